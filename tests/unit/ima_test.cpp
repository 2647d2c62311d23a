#include "atm/ima.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "display/display_context.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::string first_lines(std::vector<std::uint8_t> payload) {
    display_context context;
    captured_output output;
    dump_ima(octets_of(payload), context);
    return output.take().substr(0, 45);
}

// A cell header names a cell IMA only for labels 1 and 3, so that other versions reach the decoder only like this.
TEST(ima, versions) {
    EXPECT_TRUE(first_lines({1, 0x80}).starts_with("\tIMA Version:\t  1.0\n\tIMA Cell Type:\t  ICP\n"));
    EXPECT_TRUE(first_lines({3, 0x80}).starts_with("\tIMA Version:\t  1.1\n\tIMA Cell Type:\t  ICP\n"));
    EXPECT_TRUE(first_lines({0, 0x80}).starts_with("\tIMA Version:\t  wrong\n\tIMA Cell Type:\t  ICP\n"));
    EXPECT_TRUE(first_lines({2, 0x80}).starts_with("\tIMA Version:\t  wrong\n"));
    EXPECT_TRUE(first_lines({255, 0x80}).starts_with("\tIMA Version:\t  wrong\n"));
}

TEST(ima, a_cell_without_the_type_bit_is_a_filler) {
    EXPECT_TRUE(first_lines({1, 0x7F}).starts_with("\tIMA Version:\t  1.0\n\tIMA Cell Type:\t  Filler\n"));
}

}  // namespace
}  // namespace ifwatch
