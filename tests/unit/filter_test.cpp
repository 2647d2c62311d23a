#include "sim/filter.h"

#include <gtest/gtest.h>

#include "capture/channel_types.h"
#include "cases/case_file.h"
#include "sim/record_stream.h"

namespace ifwatch::sim {
namespace {

using namespace capture;
using namespace cases;

using octet_vector = std::vector<std::uint8_t>;

octet_vector octets_of_hex(const std::string& hex) {
    trace_case holder;
    std::string error;
    EXPECT_TRUE(parse_case("channel 6\nrecord R 0\n " + hex, holder, error)) << error;
    return holder.records.front().data;
}

constexpr char MACS[] = "000102030405 0A0B0C0D0E0F ";  // destination, source
constexpr char LLC[] = "AAAA03 000000 0800 ";

std::string ip(const std::string& protocol, const std::string& ports, const std::string& offset = "0000") {
    return "4500 0028 0001" + offset + " 40" + protocol + " 0000 0101010A 01010114 " + ports;
}

// 1.1.1.10 -> 1.1.1.20
octet_vector tcp() { return octets_of_hex(std::string(MACS) + "0800" + ip("06", "0402 0017")); }  // 1026 -> 23
octet_vector udp() { return octets_of_hex(std::string(MACS) + "0800" + ip("11", "0035 0200")); }  // 53 -> 512
octet_vector icmp() { return octets_of_hex(std::string(MACS) + "0800" + ip("01", "0800 0000")); }
octet_vector fragment() { return octets_of_hex(std::string(MACS) + "0800" + ip("06", "0402 0017", "0010")); }
octet_vector tagged() { return octets_of_hex(std::string(MACS) + "8100 0005 0800" + ip("06", "0402 0017")); }
octet_vector snap() { return octets_of_hex(std::string(MACS) + "0030" + LLC + ip("06", "0402 0017")); }
octet_vector arp() { return octets_of_hex(std::string(MACS) + "0806 0001 0800 0604 0001"); }
octet_vector spanning_tree() { return octets_of_hex(std::string(MACS) + "0026 424203 0000"); }

frame_filter filter_of(const std::vector<filter_entry>& entries) {
    frame_filter filter;
    std::string error;
    EXPECT_TRUE(build_filter(entries, filter, error)) << error;
    return filter;
}

bool shows(const std::vector<filter_entry>& entries, const octet_vector& frame, int channel_type = CHANNEL_LAN) {
    const auto fields = read_frame_fields(channel_type, frame);
    EXPECT_TRUE(fields.has_value());
    return fields && passes(filter_of(entries), *fields);
}

TEST(frame_filter, without_terms_shows_everything) {
    EXPECT_TRUE(shows({}, tcp()));
    EXPECT_TRUE(shows({}, arp()));
    EXPECT_TRUE(shows({}, {}));
}

TEST(frame_filter, one_way_sessions) {
    EXPECT_TRUE(shows({{'I', "1.1.1.10"}}, tcp()));
    EXPECT_FALSE(shows({{'I', "1.1.1.20"}}, tcp()));
    EXPECT_TRUE(shows({{'I', ":1.1.1.20"}}, tcp()));
    EXPECT_FALSE(shows({{'I', ":1.1.1.10"}}, tcp()));
    EXPECT_TRUE(shows({{'I', "1.1.1.10:1.1.1.20"}}, tcp()));
    EXPECT_FALSE(shows({{'I', "1.1.1.20:1.1.1.10"}}, tcp()));
    EXPECT_TRUE(shows({{'I', "::6"}}, tcp()));
    EXPECT_FALSE(shows({{'I', "::6"}}, udp()));
    EXPECT_TRUE(shows({{'I', "::17::512"}}, udp()));
    EXPECT_FALSE(shows({{'I', "::17:512"}}, udp()));
    EXPECT_TRUE(shows({{'I', "1.1.1.10::17::512"}}, udp()));
    EXPECT_TRUE(shows({{'I', "::::23"}}, tcp())) << "ports of either protocol";
    EXPECT_TRUE(shows({{'I', ""}}, icmp())) << "any IP";
}

TEST(frame_filter, two_way_sessions) {
    EXPECT_TRUE(shows({{'B', "1.1.1.10"}}, tcp()));
    EXPECT_TRUE(shows({{'B', "1.1.1.20"}}, tcp()));
    EXPECT_FALSE(shows({{'B', "1.1.1.30"}}, tcp()));
    EXPECT_TRUE(shows({{'B', "1.1.1.20:1.1.1.10"}}, tcp()));
    EXPECT_TRUE(shows({{'B', "::6:1026:23"}}, tcp()));
    EXPECT_TRUE(shows({{'B', "::6:23:1026"}}, tcp()));
    EXPECT_TRUE(shows({{'B', "1.1.1.20:1.1.1.10:6:23:1026"}}, tcp()));
    EXPECT_FALSE(shows({{'B', "1.1.1.10:1.1.1.20:6:23:1026"}}, tcp())) << "addresses and ports turn together";
}

TEST(frame_filter, what_a_frame_does_not_have_does_not_fit) {
    EXPECT_FALSE(shows({{'I', "::"}}, arp()));
    EXPECT_FALSE(shows({{'I', "::6::23"}}, fragment())) << "only the first fragment has ports";
    EXPECT_TRUE(shows({{'I', "::6"}}, fragment()));
    EXPECT_FALSE(shows({{'I', ":::0"}}, icmp()));
    EXPECT_FALSE(shows({{'s', "0A0B0C0D0E0F"}}, {}));
}

TEST(frame_filter, negation) {
    EXPECT_FALSE(shows({{'I', "!1.1.1.10"}}, tcp()));
    EXPECT_TRUE(shows({{'I', "!1.1.1.20"}}, tcp()));
    EXPECT_FALSE(shows({{'B', "!1.1.1.20"}}, tcp()));
    EXPECT_TRUE(shows({{'I', "!::50"}}, arp())) << "frames without IP stay";
    EXPECT_FALSE(shows({{'d', "!00:01:02:03:04:05"}}, arp()));
}

TEST(frame_filter, terms_are_joined_by_and_unless_or_stands_between) {
    EXPECT_TRUE(shows({{'I', "::6"}, {'I', ":1.1.1.20"}}, tcp()));
    EXPECT_FALSE(shows({{'I', "::6"}, {'I', ":1.1.1.30"}}, tcp()));
    const std::vector<filter_entry> tcp_or_udp = {{'I', "::6"}, {'o', ""}, {'I', "::17"}};
    EXPECT_TRUE(shows(tcp_or_udp, tcp()));
    EXPECT_TRUE(shows(tcp_or_udp, udp()));
    EXPECT_FALSE(shows(tcp_or_udp, icmp()));
    const std::vector<filter_entry> closer = {{'I', "::1"}, {'o', ""}, {'I', "::6"}, {'I', ":1.1.1.30"}};
    EXPECT_TRUE(shows(closer, icmp())) << "AND binds closer than OR";
    EXPECT_FALSE(shows(closer, tcp()));
}

TEST(frame_filter, a_joiner_without_a_side_joins_nothing) {
    EXPECT_FALSE(shows({{'o', ""}, {'I', "::17"}, {'o', ""}}, tcp()));
    EXPECT_TRUE(shows({{'o', ""}}, tcp()));
}

TEST(frame_filter, mac_addresses) {
    for (const char* text : {"0A0B0C0D0E0F", "0a:0b:0c:0d:0e:0f", "0A-0B-0C-0D-0E-0F", "0a0b.0c0d.0e0f"}) {
        EXPECT_TRUE(shows({{'s', text}}, tcp())) << text;
        EXPECT_FALSE(shows({{'d', text}}, tcp())) << text;
    }
    EXPECT_TRUE(shows({{'d', "000102030405"}}, spanning_tree()));
}

TEST(frame_filter, llc_frames) {
    EXPECT_TRUE(shows({{'l', ""}}, spanning_tree()));
    EXPECT_TRUE(shows({{'l', ""}}, snap()));
    EXPECT_FALSE(shows({{'l', ""}}, tcp()));
}

TEST(frame_filter, finds_ip_in_every_framing) {
    const std::vector<filter_entry> telnet = {{'I', "1.1.1.10:1.1.1.20:6:1026:23"}};
    EXPECT_TRUE(shows(telnet, tagged()));
    EXPECT_TRUE(shows(telnet, snap()));
    EXPECT_TRUE(shows(telnet, snap(), CHANNEL_LAN_802_3));
    const std::string ring = "1040 000102030405 0A0B0C0D0E0F ";
    const std::string routed = "1040 000102030405 8A0B0C0D0E0F 06A0 0011 0022 ";
    EXPECT_TRUE(shows(telnet, octets_of_hex(ring + LLC + ip("06", "0402 0017")), CHANNEL_TOKEN_RING));
    EXPECT_TRUE(shows(telnet, octets_of_hex(routed + LLC + ip("06", "0402 0017")), CHANNEL_TOKEN_RING));
    EXPECT_TRUE(shows(telnet, octets_of_hex("0021" + ip("06", "0402 0017")), CHANNEL_TUNNEL));
}

TEST(frame_filter, frames_cut_short_are_read_as_far_as_they_go) {
    const std::string ring = "1040 000102030405 8A0B0C0D0E0F 1FA0 ";
    const std::pair<int, octet_vector> frames[] = {{CHANNEL_LAN, tagged()},
                                                   {CHANNEL_LAN, snap()},
                                                   {CHANNEL_TOKEN_RING, octets_of_hex(ring)},
                                                   {CHANNEL_TUNNEL, tcp()}};
    for (const auto& [channel_type, whole] : frames) {
        for (std::size_t n = 0; n < whole.size(); ++n) {
            const octet_vector part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n));
            EXPECT_FALSE(shows({{'I', "::6::23"}}, part, channel_type)) << n;
        }
    }
}

TEST(frame_filter, an_ip_header_longer_than_the_datagram_has_no_ports) {
    octet_vector frame = tcp();
    frame[14] = 0x4F;
    EXPECT_FALSE(shows({{'I', "::6::23"}}, frame));
    EXPECT_TRUE(shows({{'I', "::6"}}, frame));
}

class bad_filters : public testing::TestWithParam<filter_entry> {};

TEST_P(bad_filters, are_refused) {
    frame_filter filter;
    std::string error;
    EXPECT_FALSE(build_filter(std::vector<filter_entry>{GetParam()}, filter, error));
    EXPECT_TRUE(error.starts_with("bad filter -")) << error;
}

INSTANTIATE_TEST_SUITE_P(filter, bad_filters,
                         testing::Values(filter_entry{'I', "::256"}, filter_entry{'I', "::tcp"},
                                         filter_entry{'I', ":::65536"}, filter_entry{'I', "::::-1"},
                                         filter_entry{'B', "1:2:3:4:5:6"}, filter_entry{'B', "no host.invalid"},
                                         filter_entry{'s', "0A0B0C0D0E"}, filter_entry{'d', "0A0B0C0D0E0G"},
                                         filter_entry{'s', ""}, filter_entry{'l', "x"}, filter_entry{'x', ""}));

TEST(selects, atm_records_by_vpi_and_vci) {
    trace_case atm;
    atm.channel_type = CHANNEL_ATM;
    case_record data;
    data.info = 8U << 24 | 35U << 8;
    case_record event;
    event.info = 7;
    const auto shown = [&atm](std::optional<int> vpi, std::optional<int> vci, const case_record& record) {
        return selects({atm, {}, vpi, vci, -1}, record);
    };
    EXPECT_TRUE(shown({}, {}, data));
    EXPECT_TRUE(shown(8, 35, data));
    EXPECT_FALSE(shown(9, 35, data));
    EXPECT_FALSE(shown(8, 36, data));
    EXPECT_FALSE(shown({}, 0, data));
    EXPECT_TRUE(shown(9, 36, event)) << "events of the line have no connection";
}

TEST(selects, records_that_filters_do_not_apply_to) {
    trace_case isdn;
    const case_record record;
    EXPECT_TRUE(selects({isdn, filter_of({{'I', "1.2.3.4"}}), 1, 2, -1}, record));
}

}  // namespace
}  // namespace ifwatch::sim
