#include "eft/ets300079.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

std::string shown(std::vector<std::uint8_t> data) {
    captured_output output;
    EXPECT_EQ(dump_ets300079(octets_of(data)), static_cast<int>(data.size()));
    return output.take();
}

TEST(ets300079, a_message_begins_with_its_protocol_identification) {
    EXPECT_EQ(shown({0x40, 0x9E, 0x02, 0x00}), "ETS 300079: SBV_Channel_Open_TC\n");
    EXPECT_EQ(shown({0x41, 0x9E, 0x02, 0x00}), "\n");
    EXPECT_EQ(shown({0x40, 0x9F, 0x02, 0x00}), "\n");
    EXPECT_EQ(shown({0x40, 0x9E, 0x02}), "\n");
}

}  // namespace
}  // namespace ifwatch
