#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "display/bchannel.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "support/captured_output.h"
#include "x25/frmr.h"
#include "x25/lapb.h"
#include "x25/t70.h"
#include "x25/v42bis.h"
#include "x25/x25_cause.h"
#include "x25/x25_facilities.h"
#include "x25/x25_fields.h"
#include "x25/x25_packet.h"
#include "x25/xid.h"

// What the decoders of layer 2 and 3 return is what the layer above starts from. Their text is held by the golden
// cases.

namespace ifwatch {
namespace {

using bytes = std::vector<std::uint8_t>;

int lapb_length(bytes frame, int modulo128) {
    const captured_output output;
    display_context context;
    context.lapb_mod128 = modulo128;
    return dump_lapb_frame(octets_of(frame), context);
}

TEST(lapb, numbered_frames_are_an_octet_longer_in_modulo_128) {
    for (const std::uint8_t control : std::to_array<std::uint8_t>({0x00, 0xFE, 0x01, 0x05, 0x09})) {
        EXPECT_EQ(lapb_length({0x01, control, 0x00, 0x00}, 0), 2);
        EXPECT_EQ(lapb_length({0x01, control, 0x00, 0x00}, 1), 3);
    }
}

TEST(lapb, other_frames_are_two_octets_long) {
    for (const std::uint8_t control : std::to_array<std::uint8_t>({0x03, 0x13, 0x0F, 0x2F, 0x43, 0x63, 0x6F, 0xFF})) {
        EXPECT_EQ(lapb_length({0x01, control, 0x00, 0x00}, 0), 2);
        EXPECT_EQ(lapb_length({0x01, control, 0x00, 0x00}, 1), 2);
    }
}

TEST(lapb, the_second_octet_of_an_address_is_not_counted) { EXPECT_EQ(lapb_length({0x04, 0x03, 0x00, 0x41}, 0), 2); }

TEST(lapb, frmr_and_xid_count_all_of_the_frame) {
    EXPECT_EQ(lapb_length({0x01, 0x87, 0x01, 0x02, 0x03}, 0), 2 + 5);
    EXPECT_EQ(lapb_length({0x01, 0xAF, 0x82, 0x00, 0x00}, 0), 2 + 3);
}

TEST(lapb, only_sabme_sabm_and_disc_change_the_modulus) {
    for (int control = 0; control < 256; ++control) {
        const captured_output output;
        for (const int before : {0, 1}) {
            bytes frame{0x01, static_cast<std::uint8_t>(control), 0x00};
            display_context context;
            context.lapb_mod128 = before;
            dump_lapb_frame(octets_of(frame), context);
            const int type = control & ~0x10;
            const bool enters = type == 0x6F;
            const bool leaves = type == 0x2F || type == 0x43;
            EXPECT_EQ(context.lapb_mod128, enters ? 1 : leaves ? 0 : before) << control;
        }
    }
}

TEST(lapb, another_link_layer_prints_its_own_fields) {
    captured_output output;
    display_context context;
    bytes frame{0x42, 0x03, 0x10, 0x21};
    const lapb_header header{.address = 0x42, .control = 0x10, .nr = 16, .ns = 8, .poll_final = 1};
    EXPECT_EQ(print_lapb_control(octets_of(frame), header, context), 2);
    EXPECT_EQ(output.take(), "\tA=  42  I    P/F=1 N(R)=16 N(S)=8 \n");
}

std::string frmr_text(bytes frame) {
    captured_output output;
    EXPECT_EQ(dump_frmr_info(octets_of(frame), 2), static_cast<int>(frame.size()));
    return output.take();
}

TEST(frmr, a_frame_of_one_octet_has_only_a_line_end) {
    EXPECT_EQ(frmr_text({0x01}), "\n");
    EXPECT_EQ(frmr_text({}), "\n");
}

int t70_length(bytes packet) {
    const captured_output output;
    return dump_t70_packet(octets_of(packet));
}

TEST(t70, the_length_indicator_counts_as_it_stands) {
    EXPECT_EQ(t70_length({0x00, 0x00}), 1);
    EXPECT_EQ(t70_length({0x03, 0x80, 0x00, 0x00}), 4);
    EXPECT_EQ(t70_length({0x0F}), 16);
    EXPECT_EQ(t70_length({0x30, 1, 2, 3, 4}), 5);
    EXPECT_EQ(t70_length({0x10, 0x01, 0x00, 0x41}), 3);
}

int x25_length(bytes packet) {
    const captured_output output;
    return dump_x25_packet(octets_of(packet));
}

TEST(x25_packet, user_data_begin_behind_three_or_four_octets) {
    EXPECT_EQ(x25_length({0x10, 0x01, 0x00, 0x41}), 3);
    EXPECT_EQ(x25_length({0x20, 0x01, 0x00, 0x00, 0x41}), 4);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x21}), 3);
    EXPECT_EQ(x25_length({0x20, 0x01, 0x01, 0x00}), 4);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x23, 0x41, 0x42}), 3);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x27, 0x41}), 3);
}

TEST(x25_packet, every_other_packet_is_taken_whole) {
    for (const std::uint8_t type :
         std::to_array<std::uint8_t>({0x0B, 0x13, 0x17, 0x1B, 0x1F, 0xF1, 0xF3, 0xF7, 0xFB, 0xFF, 0x03})) {
        EXPECT_EQ(x25_length({0x10, 0x01, type}), 3) << int{type};
        EXPECT_EQ(x25_length({0x10, 0x01, type, 0xFF, 0xFF, 0xFF}), 6) << int{type};
    }
    EXPECT_EQ(x25_length({0x20, 0x01, 0x21, 0x00, 0x00}), 5);
    EXPECT_EQ(x25_length({0x10}), 1);
    EXPECT_EQ(x25_length({}), 0);
}

TEST(x25_packet, a_call_accept_counts_what_its_fields_claim) {
    EXPECT_EQ(x25_length({0x10, 0x01, 0x0F}), 3);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x0F, 0x22, 0x12, 0x34}), 6);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x0F, 0xFF, 0x12}), 3 + 16);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x0F, 0x00, 0x05, 0x01}), 3 + 1 + 6);
    EXPECT_EQ(x25_length({0x10, 0x01, 0x0F, 0x00, 0x00, 0x41}), 6);
}

TEST(x25_fields, addresses_round_up_to_whole_octets) {
    const captured_output output;
    bytes short_form{0x23, 0x12, 0x34, 0x50};
    EXPECT_EQ(dump_x25_addresses(octets_of(short_form), 0), 1 + 3);
    bytes long_form{0xFF, 0xFE, 0x12};
    EXPECT_EQ(dump_x25_addresses(octets_of(long_form), 1), 2 + 255);
    bytes none{0x00};
    EXPECT_EQ(dump_x25_addresses(octets_of(none), 0), 1);
}

TEST(x25_facilities, an_error_counts_one_octet_less) {
    const captured_output output;
    bytes good{0x03, 0x43, 0x02, 0x02};
    EXPECT_EQ(dump_x25_facilities(octets_of(good)), 4);
    bytes overrun{0x02, 0x43, 0x02, 0x02};
    EXPECT_EQ(dump_x25_facilities(octets_of(overrun)), 2);
    bytes none{0x00, 0x43};
    EXPECT_EQ(dump_x25_facilities(octets_of(none)), 1);
}

TEST(x25_facilities, an_address_extension_is_cleared_in_the_octets) {
    const captured_output output;
    bytes field{0x06, 0x00, 0x0F, 0xC9, 0x02, 0x82, 0x12};
    dump_x25_facilities(octets_of(field));
    EXPECT_EQ(field[5], 0x02);
}

TEST(xid, the_whole_field_is_taken_in_every_case) {
    const captured_output output;
    for (bytes field : {bytes{}, bytes{0x81}, bytes{0x81, 1, 2, 3}, bytes{0x82, 0x42, 0, 0},
                        bytes{0x82, 0x80, 0xFF, 0xFF}, bytes{0x55, 1}}) {
        EXPECT_EQ(dump_xid_info(octets_of(field)), static_cast<int>(field.size()));
    }
    EXPECT_EQ(dump_xid_info(octets{}), 0);
    bytes group{0x00, 0x03, 'V', '4', '2', 0x01};
    EXPECT_EQ(dump_v42bis_parameters(octets_of(group)), 6);
}

TEST(dump_bchannel, nests_only_so_deep) {
    captured_output output;
    display_context context;
    context.mode_flags = MODE_LAYER2;
    bytes frame{0x01, 0x3F};
    context.nesting = MAX_NESTING - 1;
    dump_bchannel(octets_of(frame), 0, context);
    EXPECT_EQ(output.take(), "\tA=   1  SABM  P/F=1\n");
    EXPECT_EQ(context.nesting, MAX_NESTING - 1);
    context.nesting = MAX_NESTING;
    dump_bchannel(octets_of(frame), 0, context);
    EXPECT_EQ(output.take(), "");
}

TEST(x25_cause, is_the_dtes_own_with_its_top_bit_set) {
    EXPECT_EQ(x25_cause_name(0x0D, X25_CLEARING_CAUSES).view(), "Not obtainable");
    EXPECT_EQ(x25_cause_name(0x0D, X25_RESETTING_CAUSES).view(), "");
    EXPECT_EQ(x25_cause_name(0xF2, X25_CLEARING_CAUSES).view(), "DTE originated");
    EXPECT_EQ(x25_diagnostic_name(67).view(), "Invalid called DTE address");
    EXPECT_EQ(x25_diagnostic_name(245).view(), "");
}

}  // namespace
}  // namespace ifwatch
