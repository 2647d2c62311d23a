#include "ppp/ppp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/captured_output.h"

namespace ifwatch {
namespace {

using frame = std::vector<std::uint8_t>;
using testing::ElementsAre;

struct result {
    int claimed;
    std::string text;
};

result dump(frame octets_given) {
    captured_output output;
    const int claimed = dump_ppp(octets_of(octets_given));
    return {claimed, output.take()};
}

TEST(dump_ppp, leaves_data_protocols_to_its_caller) {
    EXPECT_EQ(dump({0xFF, 0x03, 0x00, 0x21, 0x45}).claimed, 0);
    EXPECT_EQ(dump({0x21}).claimed, 0);
    EXPECT_EQ(dump({0x7E, 0xFF}).claimed, 0);
    EXPECT_EQ(dump({0x00, 0x3D, 0x80, 0, 0, 1, 0x21}).claimed, 0);
    EXPECT_EQ(dump({}).claimed, 0);
}

TEST(dump_ppp, claims_control_protocols_and_fragments) {
    EXPECT_EQ(dump({0x80, 0x21, 1, 1, 0, 4}).claimed, 1);
    EXPECT_EQ(dump({0x80, 0x01}).claimed, 1);
    EXPECT_EQ(dump({0xC0, 0x21}).claimed, 1);
    EXPECT_EQ(dump({0x00, 0x3D, 0x40, 0, 0, 1, 0x21}).claimed, 1);
    EXPECT_EQ(dump({0x00, 0x3D, 0x80, 0, 0, 1}).claimed, 1);
}

TEST(dump_ppp, is_silent_on_a_multilink_header_that_is_cut) {
    const result cut = dump({0xFF, 0x03, 0x00, 0x3D, 0xC0, 0, 0});
    EXPECT_EQ(cut.claimed, 1);
    EXPECT_EQ(cut.text, "");
}

TEST(dump_ppp, ends_the_texts_of_a_packet_where_the_packet_ends) {
    frame packet = {0xC2, 0x23, 3, 1, 0, 6, 'o', 'k', 'n', 'o'};
    captured_output output;
    dump_ppp(octets_of(packet));
    EXPECT_THAT(output.take(), testing::EndsWith("Success Message ok\n"));
    EXPECT_THAT(packet, ElementsAre(0xC2, 0x23, 3, 1, 0, 6, 'o', 'k', 0, 'o'));
}

TEST(dump_ppp, writes_nothing_behind_the_octets_held) {
    frame buffer = {0xC2, 0x23, 3, 1, 0, 6, 'o', 'k', 'n', 'o'};
    captured_output output;
    // The octets behind are those of another frame: neither shown nor touched, whatever the packet declares.
    for (const std::uint8_t declared : std::to_array<std::uint8_t>({6, 7, 200})) {
        buffer[5] = declared;
        dump_ppp(octets_of(buffer).cut(8));
        EXPECT_THAT(output.take(), testing::EndsWith("Success Message ok\n"));
        EXPECT_EQ(buffer[8], 'n');
    }
}

TEST(dump_ppp, believes_a_declared_length_beyond_what_is_held) {
    frame packet = {0x80, 0x21, 1, 1, 0, 0x20, 3, 6, 10, 0};
    octets view = octets_of(packet);
    view.length = 100;
    captured_output output;
    EXPECT_EQ(dump_ppp(view), 1);
    EXPECT_THAT(output.take(), testing::EndsWith("Configure-Request\n\t\tIP-Address 10.0.0.0;\n"));
}

}  // namespace
}  // namespace ifwatch
