#include "eft/eft_tdu.h"

#include <gtest/gtest.h>

#include <vector>

#include "display/display_context.h"
#include "eft/eft_attributes.h"
#include "eft/eft_directory.h"
#include "eft/eft_result.h"
#include "eft/ets300079.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

using octet_list = std::vector<std::uint8_t>;

octets declared(octet_list& held, int length) {
    octets view = octets_of(held);
    view.length = length;
    return view;
}

TEST(eft_tdu, nothing_behind_the_data_given_is_read) {
    octet_list held{0x21, 0x03, 0x46, 0x01, 0x05};
    display_context context;
    captured_output output;
    dump_eft_tdu(declared(held, 5), context);
    EXPECT_EQ(output.take(), "\tEFT:\tT-RELEASE\n\t\tAppl. resp. timeout:    5 sec\n");
    dump_eft_tdu(declared(held, 4), context);
    EXPECT_EQ(output.take(), "\tEFT:\tT-RELEASE\n\t\tAppl. resp. timeout:    timer disabled\n");
    dump_eft_tdu(declared(held, 2), context);
    EXPECT_EQ(output.take(), "\tEFT:\tT-RELEASE\n");
    dump_eft_tdu(declared(held, 0), context);
    EXPECT_EQ(output.take(), "\tEFT:\tunknown TDU command identifier 0x00\n");
}

TEST(eft_tdu, the_context_keeps_the_answered_command) {
    octet_list response{0x32, 0x03, 0x43, 0x01, 0x24};
    octet_list control{0x40, 0x9E, 0x02, 0x00};
    octet_list description{0x2F, 0x02, 0x30, 0x00};
    display_context context;
    captured_output output;
    dump_eft_tdu(octets_of(response), context);
    EXPECT_EQ(context.eft_response_command, 0x24U);
    dump_eft_tdu(octets_of(control), context);
    EXPECT_EQ(context.eft_response_command, 0x24U);
    dump_eft_tdu(octets_of(description), context);
    EXPECT_EQ(context.eft_response_command, 0U);
    EXPECT_TRUE(output.take().ends_with("\tEFT:\tT-WRITE\n\n\t\tDIRECTORY:\n"));
}

TEST(eft_attributes, returns_the_length_octet_of_a_block) {
    octet_list block{0x30, 0x06, 0x22, 0x04, 'N', 'A', 'M', 'E'};
    octet_list too_long{0x30, 0xC8};
    octet_list other{0x31, 0x00};
    captured_output output;
    EXPECT_EQ(dump_eft_attributes(octets_of(block)), 6);
    EXPECT_EQ(output.take(), "\n\t\tTransfer name:          NAME\n");
    EXPECT_EQ(dump_eft_attributes(octets_of(too_long)), 200);
    EXPECT_EQ(output.take(), "\n");
    EXPECT_EQ(dump_eft_attributes(octets_of(other)), -1);
    EXPECT_EQ(output.take(), "");
}

TEST(eft_directory, returns_the_octets_consumed) {
    octet_list listing{'A', '\r', '\n', 'B'};
    captured_output output;
    EXPECT_EQ(dump_eft_directory(octets_of(listing)), 4);
    EXPECT_EQ(output.take(), "\n\t\tDIRECTORY:\n\t\t\tA\n\t\t\tB");
    EXPECT_EQ(dump_eft_directory(declared(listing, 2)), 2);
    EXPECT_EQ(output.take(), "\n\t\tDIRECTORY:\n\t\t\tA\r") << "the line end is cut in two";
    EXPECT_EQ(dump_eft_directory(declared(listing, 100)), 4);
    EXPECT_EQ(dump_eft_directory(declared(listing, -1)), 0);
}

TEST(ets300079, returns_the_length_of_the_data) {
    octet_list message{0x40, 0x9E, 0x02, 0x00, 0x55};
    captured_output output;
    EXPECT_EQ(dump_ets300079(octets_of(message)), 5);
    EXPECT_EQ(dump_ets300079(declared(message, 3)), 3);
    EXPECT_EQ(dump_ets300079(declared(message, 4)), 4);
    EXPECT_EQ(output.take(), "ETS 300079: SBV_Channel_Open_TC\n\nETS 300079: SBV_Channel_Open_TC\n");
}

TEST(eft_names, of_commands_results_and_reasons) {
    EXPECT_EQ(eft_command_name(0x25).view(), "T-LOAD");
    EXPECT_EQ(eft_command_name(0x00).view(), "");
    EXPECT_EQ(eft_result_name(0x49).view(), "Unknown file");
    EXPECT_FALSE(eft_result_name(0x2F));
    EXPECT_EQ(eft_reason_name(0x22).view(), "disk full");
    EXPECT_FALSE(eft_reason_name(0x20));
}

}  // namespace
}  // namespace ifwatch
