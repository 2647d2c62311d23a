#include "capture/record_frame.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "capture/pcapng_writer.h"
#include "display/display_context.h"

namespace ifwatch::capture {
namespace {

using octet_list = std::vector<std::uint8_t>;

constexpr link_layer PPP_LINK = {LINK_PPP};

/// A record and the packet that is made of it.
struct framed_record {
    octet_list payload;
    record_header header;
    display_context context;
    link_frame frame;
    bool made = false;

    framed_record(int channel_type, octet_list octets, record_header of_record, std::uint32_t original = 0)
        : payload(std::move(octets)), header(of_record) {
        context.channel_type = channel_type;
        context.header = &header;
        context.payload = octets_of(payload);
        context.original_length = original != 0 ? original : static_cast<std::uint32_t>(payload.size());
        made = make_frame(context, find_link_layer(channel_type, PPP_LINK), frame);
    }

    [[nodiscard]] octet_list packet() const {
        octet_list all(frame.prefix().begin(), frame.prefix().end());
        all.insert(all.end(), frame.data.begin(), frame.data.end());
        return all;
    }
};

constexpr record_header SENT = {.timestamp_ms = 0, .record_flags = 1, .channel_info = 0, .sequence = 1};
constexpr record_header RECEIVED = {.timestamp_ms = 0, .record_flags = 0, .channel_info = 0, .sequence = 1};

record_header with(record_header header, std::uint32_t flags, std::uint32_t info) {
    header.record_flags |= flags;
    header.channel_info = info;
    return header;
}

struct interface_link {
    int channel_type;
    known_link_type link;
    const char* dissector = "";
};

TEST(link_layer, of_every_interface_type) {
    const interface_link wanted[] = {
        {-2, LINK_EXPORTED_PDU, "q931"},
        {0, LINK_LAPD},
        {1, LINK_PPP},
        {2, LINK_SUNATM},
        {3, LINK_SUNATM},
        {4, LINK_USER0},
        {5, LINK_RAW_IP},
        {6, LINK_ETHERNET},
        {7, LINK_ETHERNET},
        {8, LINK_TOKEN_RING},
        {9, LINK_TOKEN_RING},
        {16, LINK_EXPORTED_PDU, "lapb"},
        {23, LINK_PPP},
        {32, LINK_FRAME_RELAY},
        {94, LINK_USER0},
        {118, LINK_CISCO_HDLC},
        {131, LINK_RAW_IP},
        {135, LINK_ETHERNET},
        {169, LINK_USER0},
        {200, LINK_USER0},
        {-1, LINK_USER0},
    };
    for (const interface_link& row : wanted) {
        const link_layer found = find_link_layer(row.channel_type, PPP_LINK);
        EXPECT_EQ(found.type, row.link) << row.channel_type;
        EXPECT_EQ(std::string(found.dissector != nullptr ? found.dissector : ""), row.dissector) << row.channel_type;
    }
}

TEST(link_layer, of_a_b_channel_is_the_chosen_one) {
    EXPECT_EQ(find_link_layer(1, {LINK_FRAME_RELAY}).type, LINK_FRAME_RELAY);
    EXPECT_EQ(find_link_layer(0, {LINK_FRAME_RELAY}).type, LINK_LAPD);
}

TEST(record_frame, keeps_octets_lengths_and_direction) {
    const framed_record lan(6, {1, 2, 3, 4}, SENT, 1514);
    ASSERT_TRUE(lan.made);
    EXPECT_EQ(lan.packet(), (octet_list{1, 2, 3, 4}));
    EXPECT_EQ(lan.frame.original_length, 1514U);
    EXPECT_EQ(lan.frame.flags, PACKET_OUTBOUND);
    EXPECT_EQ(lan.frame.comment.text(), "");
    EXPECT_EQ(framed_record(6, {1, 2, 3, 4}, RECEIVED).frame.flags, PACKET_INBOUND);
}

TEST(link_layer, tells_the_length_of_its_prefix) {
    EXPECT_EQ(prefix_length({LINK_ETHERNET}), 0U);
    EXPECT_EQ(prefix_length(find_link_layer(131, {})), 0U);
    EXPECT_EQ(prefix_length({LINK_SUNATM}), 4U);
    EXPECT_EQ(prefix_length(find_link_layer(16, {})), 20U);
    EXPECT_EQ(framed_record(16, {0x01, 0x3F}, SENT).frame.prefix().size(), 20U);
    EXPECT_EQ(prefix_length(find_link_layer(-2, {})), 20U);
    EXPECT_EQ(prefix_length(cell_link_layer()), 36U) << "the header of a cell is the record's own";
    const framed_record cell(3, {0x0A, 2, 0x10, 0x30, 0x18, 0x01}, with(SENT, 0x80, 0));
    EXPECT_EQ(cell.packet().size(), 36U + 6U);
}

TEST(record_frame, is_never_shorter_than_what_was_captured) {
    const framed_record lan(6, {1, 2, 3, 4}, SENT, 3);
    EXPECT_EQ(lan.frame.original_length, 4U);
}

TEST(record_frame, of_lapb_names_its_dissector_and_direction) {
    const framed_record lapb(16, {0x01, 0x3F}, RECEIVED);
    ASSERT_TRUE(lapb.made);
    EXPECT_EQ(lapb.packet(),
              (octet_list{0, 12, 0, 4, 'l', 'a', 'p', 'b', 0, 35, 0, 4, 0, 0, 0, 1, 0, 0, 0, 0, 0x01, 0x3F}));
    EXPECT_EQ(lapb.frame.original_length, 22U);
    EXPECT_EQ(framed_record(16, {0x01, 0x3F}, SENT).packet()[15], 0);
}

TEST(record_frame, of_a_tunnel_loses_its_two_octets) {
    const framed_record tunnel(131, {0x00, 0x21, 0x45, 0x00}, SENT, 100);
    ASSERT_TRUE(tunnel.made);
    EXPECT_EQ(tunnel.packet(), (octet_list{0x45, 0x00}));
    EXPECT_EQ(tunnel.frame.original_length, 98U);
    EXPECT_FALSE(framed_record(131, {0x00, 0x21}, SENT).made);
}

TEST(record_frame, of_the_pabx_has_port_and_call_as_a_comment) {
    const framed_record pabx(-2, {2, 5, 0x34, 0x12, 0, 0, 0x08, 0x01}, RECEIVED);
    ASSERT_TRUE(pabx.made);
    EXPECT_EQ(pabx.packet(),
              (octet_list{0, 12, 0, 4, 'q', '9', '3', '1', 0, 35, 0, 4, 0, 0, 0, 1, 0, 0, 0, 0, 0x08, 0x01}));
    EXPECT_EQ(pabx.frame.comment.text(), "port 2:5, call 0x1234");
    EXPECT_FALSE(framed_record(-2, {2, 5, 0x34, 0x12, 0, 0}, RECEIVED).made);
}

TEST(record_frame, of_a_wlan_card_has_the_object_as_a_comment) {
    EXPECT_EQ(framed_record(4, {0x10, 0, 0, 2, 0, 0, 0, 0x22, 4}, SENT).frame.comment.text(),
              "set request: DOT11_OID_SSID");
    EXPECT_EQ(framed_record(4, {0, 0, 0, 0, 0, 0, 0, 0}, SENT).frame.comment.text(), "get request: GEN_OID_MACADDRESS");
    EXPECT_EQ(framed_record(4, {0, 0, 0, 0, 0, 0, 0, 6, 2}, RECEIVED).frame.comment.text(),
              "receive: GEN_OID_MACADDRESS");
}

TEST(record_frame, of_aal5_begins_with_vpi_and_vci) {
    const octet_list llc = {0xAA, 0xAA, 0x03, 0, 0, 0};
    const framed_record atm(3, llc, with(SENT, 0, 0x01002000), 60);
    ASSERT_TRUE(atm.made);
    EXPECT_FALSE(atm.frame.cell);
    EXPECT_EQ(atm.packet(), (octet_list{0x82, 1, 0, 32, 0xAA, 0xAA, 0x03, 0, 0, 0}));
    EXPECT_EQ(atm.frame.original_length, 64U);
    EXPECT_EQ(framed_record(3, {0xFE, 0xFE, 0x03}, with(RECEIVED, 0, 0xFFFFFF00)).packet(),
              (octet_list{0x02, 255, 255, 255, 0xFE, 0xFE, 0x03}));
    EXPECT_EQ(framed_record(3, {0x45, 0x00}, with(RECEIVED, 0, 0x01002000)).packet(),
              (octet_list{0x00, 1, 0, 32, 0x45, 0x00}))
        << "multiplexed by its circuit";
}

TEST(record_frame, of_old_atm_may_have_any_access_point) {
    EXPECT_EQ(framed_record(2, {0x45, 0x00}, with(RECEIVED, 0, 0x01002005)).packet(),
              (octet_list{0x00, 1, 0, 32, 0x45, 0x00}));
}

TEST(record_frame, of_a_user_data_cell_takes_its_address_from_the_cell_header) {
    // GFC 3, VPI 8, VCI 35, PTI 1
    const framed_record cell(3, {0x32, 0x02, 0x80, 0x30, 0xAA, 0xAA, 0x03}, with(RECEIVED, 0x80, 0));
    ASSERT_TRUE(cell.made);
    EXPECT_FALSE(cell.frame.cell);
    EXPECT_EQ(cell.packet(), (octet_list{0x02, 8, 0, 35, 0xAA, 0xAA, 0x03}));
}

TEST(record_frame, of_another_cell_keeps_the_cell) {
    octet_list tags = {0, 12, 0, 20};
    const std::string dissector("mpls_pw_atm_n1_nocw\0", 20);
    tags.insert(tags.end(), dissector.begin(), dissector.end());
    tags.insert(tags.end(), {0, 35, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0});
    // GFC 3, VPI 1, VCI 32, PTI 5; then VPI 2, VCI 4, PTI 0
    for (const auto& [received, header] : {std::pair<octet_list, octet_list>{{0x0A, 2, 0x10, 0x30}, {0, 0x10, 2, 0x0A}},
                                           {{0x40, 0, 0x20, 0}, {0, 0x20, 0, 0x40}}}) {
        octet_list payload = received;
        payload.insert(payload.end(), {0x18, 0x01});
        const framed_record oam(3, payload, with(SENT, 0x80, 0));
        ASSERT_TRUE(oam.made);
        EXPECT_TRUE(oam.frame.cell);
        octet_list wanted = tags;
        wanted.insert(wanted.end(), header.begin(), header.end());
        wanted.insert(wanted.end(), {0x18, 0x01});
        EXPECT_EQ(oam.packet(), wanted);
        EXPECT_EQ(oam.frame.original_length, wanted.size());
    }
    EXPECT_EQ(cell_link_layer().type, LINK_EXPORTED_PDU);
}

TEST(record_frame, is_not_made_of_a_cell_that_ends_in_its_header) {
    EXPECT_FALSE(framed_record(3, {0x0A, 2, 0x10, 0}, with(RECEIVED, 0x80, 0)).made);
    EXPECT_FALSE(framed_record(3, {0x0A}, with(RECEIVED, 0x80, 0)).made);
}

TEST(record_frame, is_not_made_of_an_event_or_an_empty_record) {
    for (const std::uint32_t event : std::initializer_list<std::uint32_t>{1, 2, 7, 8, 255}) {
        EXPECT_FALSE(framed_record(0, {2, 1, 0x7F}, with(RECEIVED, 0, event)).made) << event;
    }
    EXPECT_FALSE(framed_record(0, {}, RECEIVED).made);
}

TEST(record_frame, with_a_line_error_is_marked) {
    const framed_record crc(0, {2, 1, 0x7F}, with(RECEIVED, 0, 4));
    ASSERT_TRUE(crc.made);
    EXPECT_EQ(crc.frame.flags, PACKET_INBOUND | PACKET_CRC_ERROR);
    EXPECT_EQ(crc.frame.comment.text(), "line error: CRC");
    const framed_record odd(0, {2, 1, 0x7F}, with(SENT, 0, 5));
    EXPECT_EQ(odd.frame.flags, PACKET_OUTBOUND | PACKET_UNALIGNED);
    EXPECT_EQ(odd.frame.comment.text(), "line error: no whole number of octets");
    EXPECT_EQ(framed_record(0, {2}, with(SENT, 0, 3)).frame.comment.text(), "line error: aborted");
    EXPECT_EQ(framed_record(0, {2}, with(SENT, 0, 6)).frame.comment.text(), "line error: receiver overrun");
    EXPECT_FALSE(framed_record(0, {}, with(RECEIVED, 0, 4)).made);
}

TEST(record_frame, is_begun_afresh_with_every_record) {
    framed_record first(-2, {2, 5, 0x34, 0x12, 0, 0, 0x08, 0x01}, with(SENT, 0, 4));
    const framed_record second(6, {1, 2}, RECEIVED);
    ASSERT_TRUE(make_frame(second.context, {LINK_ETHERNET}, first.frame));
    EXPECT_EQ(first.frame.prefix().size(), 0U);
    EXPECT_EQ(first.frame.flags, PACKET_INBOUND);
    EXPECT_EQ(first.frame.comment.text(), "");
}

}  // namespace
}  // namespace ifwatch::capture
