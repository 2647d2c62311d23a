#include "isdn/dchannel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "display/mode_flags.h"
#include "isdn/call_reference.h"
#include "isdn/lapd.h"
#include "isdn/pabx.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

using frame = std::vector<std::uint8_t>;

std::int32_t callref_of(frame data) { return message_callref(octets_of(data)); }

std::int32_t reference(frame message) { return call_reference(octets_of(message)); }

int header_length(frame data) { return lapd_header_length(octets_of(data)); }

bool carries_layer3(frame data) { return lapd_carries_layer3(octets_of(data)); }

TEST(lapd, has_four_octets_in_i_frames_and_three_in_all_others) {
    EXPECT_EQ(header_length({0x02, 0x81, 0x00, 0x00}), 4);
    EXPECT_EQ(header_length({0x02, 0x81, 0xFE, 0x00}), 4);
    EXPECT_EQ(header_length({0x02, 0x81, 0x01, 0x00}), 3);
    EXPECT_EQ(header_length({0x02, 0x81, 0x03}), 3);
    EXPECT_EQ(header_length({}), 4);
}

TEST(lapd, carries_layer_3_in_i_and_ui_frames) {
    EXPECT_TRUE(carries_layer3({0x02, 0x81, 0x00, 0x00}));
    EXPECT_TRUE(carries_layer3({0x02, 0x81, 0x03}));
    EXPECT_TRUE(carries_layer3({0x02, 0x81, 0x13}));
    EXPECT_FALSE(carries_layer3({0x02, 0x81, 0x01, 0x00}));
    EXPECT_FALSE(carries_layer3({0x02, 0x81, 0x23}));
    EXPECT_FALSE(carries_layer3({0x02, 0x81, 0x73}));
}

TEST(lapd, takes_its_address_from_two_octets) {
    frame data = {0xFE, 0x8D, 0x03};
    EXPECT_EQ(lapd_sapi(octets_of(data)), 63);
    EXPECT_EQ(lapd_tei(octets_of(data)), 70);
}

TEST(message_callref, clears_the_flag) {
    EXPECT_EQ(callref_of({0x02, 0x81, 0x00, 0x00, 0x08, 0x01, 0x03, 0x05}), 3);
    EXPECT_EQ(callref_of({0x02, 0x81, 0x00, 0x00, 0x08, 0x01, 0x83, 0x05}), 3);
    EXPECT_EQ(callref_of({0x02, 0xFF, 0x03, 0x41, 0x02, 0xFF, 0xFE, 0x05}), 0x7FFE);
}

TEST(message_callref, is_minus_1_where_there_is_none) {
    EXPECT_EQ(callref_of({0x02, 0x81, 0x00, 0x00, 0x08, 0x00, 0x03}), -1);
    EXPECT_EQ(callref_of({0x02, 0x81, 0x00, 0x00, 0x0F, 0x01, 0x03}), -1);
    EXPECT_EQ(callref_of({0x02, 0x81, 0x00, 0x00, 0x42, 0x01, 0x03}), -1);
    EXPECT_EQ(callref_of({0x02, 0x81, 0x01, 0x08, 0x01, 0x03}), -1);
    EXPECT_EQ(callref_of({0x02, 0x81, 0x63, 0x08, 0x01, 0x03}), -1);
    EXPECT_EQ(callref_of({}), -1);
}

// A TEI and a call reference to look for, without the mode that says so.
TEST(dump_dchannel, filters_only_when_the_mode_asks_for_it) {
    frame release = {0x02, 0x81, 0x00, 0x00, 0x08, 0x01, 0x03, 0x4D};  // TEI 64, call reference 3
    captured_output output;
    dump_dchannel(octets_of(release), MODE_LAYER2_ASKED | MODE_LAYER3_ASKED, -1, -1, 0);
    const std::string everything = output.take();
    EXPECT_NE(everything, "");
    dump_dchannel(octets_of(release), MODE_LAYER2_ASKED | MODE_LAYER3_ASKED, 65, 4, 0);
    EXPECT_EQ(output.take(), everything);
    dump_dchannel(octets_of(release), MODE_LAYER2_ASKED | MODE_LAYER3_ASKED | MODE_TEI_FILTER | MODE_CREF_FILTER, 65, 4,
                  0);
    EXPECT_EQ(output.take(), "");
}

TEST(dump_pabx_message, filters_only_when_the_mode_asks_for_it) {
    frame release = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08, 0x01, 0x03, 0x4D};
    captured_output output;
    dump_pabx_message(octets_of(release), 0, -1, 4, 0);
    EXPECT_NE(output.take(), "");
    dump_pabx_message(octets_of(release), MODE_CREF_FILTER, -1, 4, 0);
    EXPECT_EQ(output.take(), "");
}

TEST(call_reference, of_the_dummy_is_0) { EXPECT_EQ(reference({0x08, 0x00, 0x05}), 0); }

TEST(call_reference, reads_octets_cut_off_as_0) {
    EXPECT_EQ(reference({0x08, 0x03, 0x81, 0x02}), 0x010200);
    EXPECT_EQ(reference({0x08, 0x01}), 0);
    EXPECT_EQ(reference({0x08}), 0);
}

TEST(call_reference, wraps_at_32_bits) {
    EXPECT_EQ(reference({0x08, 0x04, 0xFF, 0xFF, 0xFF, 0xFF}), 0x7FFFFFFF);
    EXPECT_EQ(reference({0x08, 0x05, 0x01, 0xFF, 0xFF, 0xFF, 0xFE}), -2);
    EXPECT_EQ(reference({0x08, 0xFF, 0x01, 0x02, 0x03}), 0);
}

}  // namespace
}  // namespace ifwatch
