#include "capture/packet_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "capture/channel_types.h"
#include "capture/own_capture.h"
#include "capture/pcapng_blocks.h"

namespace ifwatch::capture {
namespace {

using octet_vector = std::vector<std::uint8_t>;

constexpr std::int64_t MS = 1'000'000;

/// A record made of a packet with these octets.
struct made_record {
    octet_vector octets;
    packet_record record;
    bool made = false;

    made_record(captured_packet packet, octet_vector data, const packet_source& source, const sent_rule& rule = {}) {
        std::array<std::uint8_t, RECORD_DATA_MAXIMUM> room{};
        record_clock clock;
        packet.data = data;
        packet.captured_length = static_cast<std::uint32_t>(data.size());
        packet.original_length = std::max(packet.original_length, packet.captured_length);
        made = make_packet_record(packet, source, rule, clock, room, record);
        if (made) {
            octets.assign(record.octets.begin(), record.octets.end());
        }
    }
    [[nodiscard]] bool sent() const { return (record.header.record_flags & 1) != 0; }
};

packet_source source_of(std::uint32_t link_type, std::optional<int> channel_type = {}) {
    return find_packet_source({.link_type = link_type}, channel_type).value_or(packet_source{-99});
}

packet_source own_source(std::uint32_t link_type, int channel_type) {
    return *find_packet_source({.link_type = link_type, .comment = interface_type_comment(channel_type)}, {});
}

TEST(packet_source, is_what_was_noted_else_told_else_what_fits_the_link_type) {
    EXPECT_EQ(source_of(1).channel_type, 6);
    EXPECT_EQ(source_of(1, 135).channel_type, 135);
    EXPECT_FALSE(source_of(1).own);
    EXPECT_EQ(own_source(1, 7).channel_type, 7);
    EXPECT_TRUE(own_source(1, 7).own);
    EXPECT_EQ(find_packet_source({.link_type = 252, .comment = "interface type -2"}, 0)->channel_type, -2);
    EXPECT_FALSE(find_packet_source({.link_type = 147}, {}));
    EXPECT_FALSE(find_packet_source({.link_type = 252}, {})) << "may be anything";
    EXPECT_EQ(source_of(252, 16).header, link_header::EXPORTED_PDU);
    EXPECT_EQ(source_of(147, 4).channel_type, 4);
    for (const char* comment : {"interface type", "interface type 1x", "an interface type 1", "interface type x"}) {
        EXPECT_FALSE(find_packet_source({.link_type = 1, .comment = comment}, {})->own) << comment;
    }
}

TEST(packet_record, of_an_event_is_the_whole_record_in_the_packet) {
    octet_vector record = {0, 23, 0, 16, 0, 0, 0, 9, 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 7, 0, 0, 0, 42, 0, 3, 0xAB};
    const auto source = find_packet_source({.link_type = 147, .comment = "interface type 3, events"}, 0);
    ASSERT_TRUE(source && source->own && source->events);
    const made_record event({.time_ns = 5 * MS}, record, *source);
    ASSERT_TRUE(event.made);
    EXPECT_EQ(event.octets, octet_vector{0xAB});
    EXPECT_EQ(event.record.header.timestamp_ms, 5U) << "on the line of the other packets";
    EXPECT_EQ(event.record.header.record_flags, 0x12345678U);
    EXPECT_EQ(event.record.header.channel_info, 7U);
    EXPECT_EQ(event.record.header.sequence, 42U);
    EXPECT_EQ(event.record.original_length, 3U);
    EXPECT_TRUE(event.record.own_sequence);
    record.resize(21);
    EXPECT_FALSE(made_record({}, record, *source).made);
    for (const char* comment : {"interface type 3, event", "interface type 3, events ", "interface type , events"}) {
        EXPECT_FALSE(find_packet_source({.link_type = 147, .comment = comment}, 4)->own) << comment;
    }
}

TEST(packet_record, direction_is_that_of_the_flags_then_the_header_then_the_rule) {
    const octet_vector ppp_sent = {1, 0xFF, 0x03};
    EXPECT_TRUE(made_record({}, ppp_sent, source_of(204)).sent());
    EXPECT_FALSE(made_record({.flags = PACKET_INBOUND}, ppp_sent, source_of(204)).sent());
    EXPECT_TRUE(made_record({.flags = PACKET_OUTBOUND}, {0, 0xFF}, source_of(204)).sent());
    EXPECT_TRUE(made_record({.flags = 3}, ppp_sent, source_of(204)).sent()) << "neither tells nothing";
    EXPECT_FALSE(made_record({}, {0, 0xFF}, source_of(204), sent_everything{}).sent());
    EXPECT_TRUE(made_record({}, {0xFF}, source_of(9), sent_everything{}).sent());
    EXPECT_FALSE(made_record({.flags = PACKET_INBOUND}, {0xFF}, source_of(9), sent_everything{}).sent());
    EXPECT_FALSE(made_record({}, {0xFF}, source_of(9)).sent());
}

TEST(packet_record, of_arp_is_sent_by_the_address_that_asks_or_answers) {
    constexpr std::uint32_t router = 0xC0000201;
    octet_vector frame(12);
    frame.insert(frame.end(), {0x08, 0x06, 0, 1, 0x08, 0, 6, 4, 0, 1, 2, 0, 0, 0, 0, 1, 192, 0, 2, 1});
    frame.insert(frame.end(), {0, 0, 0, 0, 0, 0, 192, 0, 2, 2});
    EXPECT_TRUE(made_record({}, frame, source_of(1), router).sent());
    EXPECT_FALSE(made_record({}, frame, source_of(1), router + 1).sent()) << "whom it asks for";
    octet_vector cut(frame.begin(), frame.begin() + 31);
    EXPECT_FALSE(made_record({}, cut, source_of(1), 0xC0000200U).sent()) << "cut in the address";
    frame[15] = 6;
    EXPECT_FALSE(made_record({}, frame, source_of(1), router).sent()) << "of other hardware";
}

TEST(packet_record, tells_when_the_rule_was_asked) {
    EXPECT_TRUE(made_record({}, {0xFF}, source_of(9)).record.sent_by_rule);
    EXPECT_FALSE(made_record({.flags = PACKET_INBOUND}, {0xFF}, source_of(9)).record.sent_by_rule);
    EXPECT_FALSE(made_record({}, {0, 0xFF}, source_of(204)).record.sent_by_rule);
    EXPECT_FALSE(made_record({.id = 1}, {2, 1, 0x7F}, own_source(203, 0)).record.sent_by_rule);
}

TEST(packet_record, of_a_cooked_packet_is_an_ethernet_frame) {
    const octet_vector version_1 = {0, 4, 0, 1, 0, 6, 2, 0, 0, 0, 0, 9, 0, 0, 0x08, 0x00, 0x45, 0x00};
    const made_record sent({.original_length = 100}, version_1, source_of(113));
    EXPECT_TRUE(sent.sent());
    EXPECT_EQ(sent.octets, (octet_vector{0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 9, 0x08, 0x00, 0x45, 0x00}));
    EXPECT_EQ(sent.record.original_length, 98U);
    const octet_vector version_2 = {0x08, 0x06, 0, 0, 0, 0, 0, 2, 0, 1, 1, 6, 2, 0, 0, 0, 0, 9, 0, 0, 0x00, 0x01};
    const made_record broadcast({}, version_2, source_of(276), sent_everything{});
    EXPECT_FALSE(broadcast.sent());
    EXPECT_EQ(broadcast.octets,
              (octet_vector{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 0, 9, 0x08, 0x06, 0x00, 0x01}));
    octet_vector llc = version_1;
    llc[1] = 3;  // between two others
    llc[15] = 4;
    llc[14] = 0;
    const made_record passing({}, llc, source_of(113), sent_everything{});
    EXPECT_TRUE(passing.sent()) << "the rule decides";
    EXPECT_EQ(passing.octets[12] << 8 | passing.octets[13], 2) << "IEEE 802.3 has a length there";
    EXPECT_FALSE(made_record({}, octet_vector(15), source_of(113)).made);
    EXPECT_FALSE(made_record({}, octet_vector(19), source_of(276)).made);
}

const octet_vector LAPB_TAGS = {0, 12, 0, 4, 'l', 'a', 'p', 'b', 0, 35, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0};

octet_vector with_frame(octet_vector tags, const octet_vector& frame) {
    tags.insert(tags.end(), frame.begin(), frame.end());
    return tags;
}

TEST(packet_record, of_an_exported_pdu_is_what_stands_behind_the_tags) {
    const made_record lapb({.original_length = 40}, with_frame(LAPB_TAGS, {0x01, 0x3F}), source_of(252, 16));
    EXPECT_EQ(lapb.octets, (octet_vector{0x01, 0x3F}));
    EXPECT_EQ(lapb.record.original_length, 20U);
    EXPECT_TRUE(lapb.sent());
    octet_vector received = LAPB_TAGS;
    received[15] = 1;
    EXPECT_FALSE(made_record({}, received, source_of(252, 16), sent_everything{}).sent());
    for (std::size_t length = 0; length < LAPB_TAGS.size(); ++length) {
        const octet_vector cut(LAPB_TAGS.begin(), LAPB_TAGS.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_FALSE(made_record({}, cut, source_of(252, 16)).made) << length;
    }
    EXPECT_EQ(short_packet_text({.number = 2, .offset = 7}, 252),
              "packet 2 at offset 7: it ends in the tags that link type 252 begins with");
}

TEST(packet_record, of_a_tunnel_begins_with_the_protocol) {
    EXPECT_EQ(made_record({}, {0x45}, source_of(101)).octets, (octet_vector{0x00, 0x21, 0x45}));
    EXPECT_EQ(made_record({}, {0x45}, source_of(101, 5)).octets, octet_vector{0x45});
    EXPECT_EQ(made_record({.id = 0x00FD'0000'0000'0000}, {0x45}, own_source(101, 131)).octets,
              (octet_vector{0x00, 0xFD, 0x45}));
    EXPECT_EQ(made_record({}, {0x45}, own_source(101, 131)).octets, (octet_vector{0x00, 0x21, 0x45}))
        << "whose ids are gone";
}

TEST(packet_record, of_an_own_packet_is_as_noted) {
    const made_record noted({.id = 0x0000'0481'0000'0007}, {2, 1, 0x7F}, own_source(203, 0), sent_nothing{});
    EXPECT_TRUE(noted.record.own_sequence);
    EXPECT_EQ(noted.record.header.sequence, 7U);
    EXPECT_EQ(noted.record.header.record_flags, 0x81U);
    EXPECT_EQ(noted.record.header.channel_info, 4U);
    const made_record foreign({.flags = PACKET_OUTBOUND, .id = 0x0000'0480'0000'0007}, {2, 1, 0x7F}, source_of(203));
    EXPECT_FALSE(foreign.record.own_sequence) << "the ids of others mean something else";
    EXPECT_EQ(foreign.record.header.record_flags, 1U);
    EXPECT_EQ(foreign.record.header.channel_info, 0U);
}

TEST(packet_record, of_an_own_packet_without_its_id_has_the_line_error_that_it_is_marked_with) {
    const auto event = [](const captured_packet& packet, const packet_source& source) {
        return made_record(packet, {2, 1, 0x7F}, source).record.header.channel_info;
    };
    EXPECT_EQ(event({.flags = PACKET_INBOUND | PACKET_CRC_ERROR}, own_source(203, 0)), 4U);
    EXPECT_EQ(event({.flags = PACKET_UNALIGNED}, own_source(203, 0)), 5U);
    EXPECT_EQ(event({.comment = "line error: aborted"}, own_source(203, 0)), 3U);
    EXPECT_EQ(event({.comment = "port 1:2, call 0x3, line error: receiver overrun"}, own_source(203, 0)), 6U);
    EXPECT_EQ(event({.flags = PACKET_CRC_ERROR, .comment = "line error: aborted"}, source_of(203)), 0U);
}

TEST(packet_record, of_a_pabx_begins_with_port_and_call) {
    const octet_vector packet = with_frame(LAPB_TAGS, {0x08, 0x01});
    EXPECT_EQ(made_record({.comment = "port 2:5, call 0x12345678"}, packet, own_source(252, -2)).octets,
              (octet_vector{2, 5, 0x78, 0x56, 0x34, 0x12, 0x08, 0x01}));
    EXPECT_EQ(made_record({.comment = "port 2"}, packet, own_source(252, -2)).octets,
              (octet_vector{2, 0, 0, 0, 0, 0, 0x08, 0x01}))
        << "as far as it tells";
    EXPECT_EQ(made_record({}, {0x08, 0x01}, source_of(147, -2)).octets, (octet_vector{0x08, 0x01}))
        << "a record as it is";
}

TEST(packet_record, of_a_cell_has_its_header_in_host_order) {
    octet_vector tags = {0, 12, 0, 20};
    const std::string dissector("mpls_pw_atm_n1_nocw\0", 20);
    tags.insert(tags.end(), dissector.begin(), dissector.end());
    tags.insert(tags.end(), {0, 0, 0, 0});
    const made_record cell({.id = 0x3A01'0080'0000'0001}, with_frame(tags, {0, 0x10, 2, 0x0A, 0x18}),
                           own_source(252, 3));
    EXPECT_EQ(cell.octets, (octet_vector{0x0A, 2, 0x10, 0x30, 0x18})) << "GFC 3, VPI 1, VCI 32, PTI 5";
    EXPECT_EQ(cell.record.header.channel_info, 0x01002000U);
    EXPECT_EQ(cell.record.original_length, 5U);
    const made_record stripped({}, with_frame(tags, {0, 0x10, 2, 0x0A, 0x18}), own_source(252, 3));
    EXPECT_EQ(stripped.octets, (octet_vector{0x0A, 2, 0x10, 0x00, 0x18})) << "without its id";
    EXPECT_EQ(stripped.record.header.record_flags, 0x80U);
    EXPECT_FALSE(made_record({}, with_frame(tags, {0, 0x10, 2}), own_source(252, 3)).made);
}

TEST(packet_record, holds_8192_octets_with_those_in_front) {
    const octet_vector large(captured_packet::MAX_KEPT, 0xAA);
    EXPECT_EQ(made_record({}, large, source_of(1)).octets.size(), 8192U);
    const made_record tunnel({.original_length = 70'000}, large, source_of(101));
    EXPECT_EQ(tunnel.octets.size(), 8192U);
    EXPECT_EQ(tunnel.record.original_length, 65535U);
}

captured_packet at(std::int64_t time_ns) { return {.time_ns = time_ns}; }

constexpr std::int64_t WRAP = (std::int64_t{1} << 32) * MS;
constexpr std::int64_t DATE = 1'600'000'000'000 * MS;

TEST(record_clock, keeps_the_time_of_a_router) {
    record_clock clock{.start_ms = 5};
    EXPECT_EQ(clock.at(at(1'000 * MS)), 1'000U);
    EXPECT_EQ(clock.at(at(900 * MS)), 900U);
    EXPECT_EQ(clock.at({}), 900U) << "without a time";
    EXPECT_EQ(clock.at(at(WRAP - 1)), 0xFFFFFFFFU);
    EXPECT_EQ(clock.at(at(WRAP + 7 * MS)), 7U) << "its clock has begun anew";
    EXPECT_FALSE(clock.first_ns);
}

TEST(record_clock, counts_from_the_first_packet_else) {
    record_clock clock{.start_ms = 5};
    EXPECT_EQ(clock.at({}), 5U);
    EXPECT_EQ(clock.at(at(WRAP)), 5U);
    EXPECT_EQ(clock.at(at(WRAP + 1'999'999)), 6U);
    EXPECT_EQ(clock.at(at(-MS)), 5U) << "before the first";
    record_clock told{.start_ms = 5, .keeps_routers_own = false};
    EXPECT_EQ(told.at(at(1'000 * MS)), 5U);
    EXPECT_EQ(told.at(at(1'001 * MS)), 6U);
}

TEST(record_clock, tells_times_of_both_kinds_apart) {
    record_clock router_first;
    EXPECT_EQ(router_first.at(at(17 * MS)), 17U);
    EXPECT_EQ(router_first.at(at(DATE)), 0U);
    EXPECT_EQ(router_first.first_ns, DATE);
    EXPECT_EQ(router_first.at(at(DATE + 2 * MS)), 2U);
    EXPECT_EQ(router_first.at(at(19 * MS)), 19U);
    EXPECT_EQ(router_first.at(at(WRAP / 2 + 19 * MS)), 0x80000013U);
    EXPECT_EQ(router_first.at(at(WRAP + 19 * MS)), 0U) << "as far as that it is another clock";
    record_clock date_first;
    EXPECT_EQ(date_first.at(at(DATE)), 0U);
    EXPECT_EQ(date_first.at(at(17 * MS)), 17U);
    EXPECT_EQ(date_first.at(at(DATE + 2 * MS)), 2U);
    EXPECT_EQ(date_first.first_ns, DATE);
}

TEST(record_clock, of_times_as_far_apart_as_can_be) {
    constexpr std::int64_t latest = 0x7FFFFFFFFFFFFFFF;
    record_clock clock;
    EXPECT_EQ(clock.at(at(-latest - 1)), 0U);
    EXPECT_EQ(clock.at(at(latest)), static_cast<std::uint32_t>(~std::uint64_t{0} / MS));
    EXPECT_EQ(clock.at(at(0)), 0U);
    EXPECT_EQ(clock.at(at(latest)), static_cast<std::uint32_t>(~std::uint64_t{0} / MS));
}

TEST(told_loss, is_at_most_what_a_line_can_tell) {
    EXPECT_EQ(told_loss(0), 0U);
    EXPECT_EQ(told_loss(0x7FFFFFFE), 0x7FFFFFFEU);
    for (const std::uint64_t lost : {std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000}, ~std::uint64_t{0}}) {
        EXPECT_EQ(told_loss(lost), 0x7FFFFFFFU) << lost;
    }
}

}  // namespace
}  // namespace ifwatch::capture
