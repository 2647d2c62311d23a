#include "convert/capture_import.h"

#include <gtest/gtest.h>

#include <array>

#include "capture/link_types.h"
#include "capture/own_capture.h"
#include "cases/case_text.h"
#include "convert/capture_export.h"
#include "support/octet_file.h"
#include "support/pcap_octets.h"
#include "support/pcapng_octets.h"

namespace ifwatch::convert {
namespace {

using namespace capture;
using namespace cases;

using octet_vector = std::vector<std::uint8_t>;
using test::pcap_octets;
using test::pcapng_octets;

/// An Ethernet frame from 02:00:01:01:02:03 that carries IP from 192.0.2.1.
const octet_vector FRAME = {0x02, 0x00, 0x02, 0x05, 0x0A, 0x10, 0x02, 0x00, 0x01, 0x01, 0x02, 0x03,
                            0x08, 0x00, 0x45, 0x00, 0x00, 0x14, 0x00, 0x00, 0x00, 0x00, 0x40, 0xFD,
                            0x00, 0x00, 0xC0, 0x00, 0x02, 0x01, 0xC0, 0x00, 0x02, 0x02};
constexpr mac_address ROUTER_MAC = {0x02, 0x00, 0x01, 0x01, 0x02, 0x03};
constexpr std::uint32_t ROUTER_IP = 0xC0000201;

/// The text of a capture's case, and what came of it.
struct imported_text {
    std::string text;
    import_outcome outcome;

    imported_text(std::span<const std::uint8_t> file, const import_settings& settings) {
        const test::octet_file input(file);
        byte_stream stream(input.fd());
        outcome = import_capture(stream, settings, "x", [this](std::string_view part) {
            text += part;
            return true;
        });
    }
};

trace_case imported(const pcap_octets& file, const import_settings& settings = {}) {
    const imported_text got(file.octets(), settings);
    EXPECT_TRUE(got.outcome.done) << got.outcome.error;
    trace_case result;
    std::string error;
    EXPECT_TRUE(parse_case(got.text, result, error)) << error;
    return result;
}

/// The only record of a file with one packet.
case_record imported_packet(std::uint32_t link_type, const octet_vector& packet, const import_settings& settings = {}) {
    const trace_case result = imported(pcap_octets().header(link_type).packet(7, 0, packet), settings);
    return result.records.empty() ? case_record{} : result.records.front();
}

std::string import_error(const pcap_octets& file, const import_settings& settings = {}) {
    const imported_text got(file.octets(), settings);
    EXPECT_FALSE(got.outcome.done);
    return got.outcome.error;
}

/// What the file of an exported record holds behind the file header.
octet_vector exported(const trace_case& source, std::optional<std::uint32_t> link_type = {}) {
    octet_vector file;
    std::size_t left_out = 0;
    std::string error;
    EXPECT_TRUE(export_capture(source, link_type, file, left_out, error)) << error;
    EXPECT_EQ(left_out, 0U);
    return {file.begin() + 24, file.end()};
}

trace_case case_of(int channel_type, const case_record& record) {
    trace_case result;
    result.channel_type = channel_type;
    result.records.push_back(record);
    return result;
}

struct link_row {
    std::uint32_t link_type;
    int channel_type;
    const char* options;
};

TEST(import_capture, a_link_type_chooses_channel_type_and_options) {
    constexpr link_row rows[] = {
        {1, 6, "-2 -p -i -N"},   {6, 9, "-2 -p -i -N"},  {9, 1, "-p -i"},         {50, 1, "-p -i"},  {204, 1, "-p -i"},
        {207, 1, "-2 -3 -t"},    {104, 1, "-i -h"},      {205, 1, "-i -h"},       {107, 1, "-i -h"}, {206, 1, "-i -h"},
        {100, 3, "-2 -p -i -N"}, {11, 3, "-2 -p -i -N"}, {123, 3, "-2 -p -i -N"}, {177, 0, "-2 -3"}, {203, 0, "-2 -3"},
        {101, 131, "-i"},        {12, 131, "-i"},        {14, 131, "-i"},         {228, 131, "-i"},
    };
    for (const link_row& row : rows) {
        const trace_case result = imported(pcap_octets().header(row.link_type));
        EXPECT_EQ(result.channel_type, row.channel_type) << row.link_type;
        EXPECT_EQ(result.options, std::vector<std::string>{row.options}) << row.link_type;
    }
}

TEST(import_capture, channel_type_and_options_can_be_told) {
    const trace_case told = imported(pcap_octets().header(1), {.channel_type = 135, .viewer_options = "-h"});
    EXPECT_EQ(told.channel_type, 135);
    EXPECT_EQ(told.options, std::vector<std::string>{"-h"});
    EXPECT_EQ(imported(pcap_octets().header(1), {.channel_type = 7}).options, std::vector<std::string>{"-2 -p -i -N"});
    EXPECT_EQ(imported(pcap_octets().header(147), {.channel_type = -2}).options, std::vector<std::string>{"-3"});
    EXPECT_EQ(imported(pcap_octets().header(107), {.channel_type = 32}).options, std::vector<std::string>{"-h"});
    EXPECT_EQ(import_error(pcap_octets().header(147)), "link type 147 fits no channel type; name one with --channel");
    EXPECT_EQ(import_error(pcap_octets().header(0)), "link type 0 fits no channel type; name one with --channel");
}

TEST(import_capture, says_what_it_read) {
    const std::string one = imported_text(pcap_octets().header(1).packet(0, 0, FRAME).octets(), {}).text;
    EXPECT_TRUE(one.starts_with("# x: link type 1 (Ethernet)\nchannel 6\noptions -2 -p -i -N\nrecord R 0\n")) << one;
    EXPECT_TRUE(one.ends_with("\n# 1 packet\n")) << one;
    EXPECT_EQ(imported_text(pcap_octets().header(147).octets(), {.channel_type = 0}).text,
              "# x: link type 147\nchannel 0\noptions -2 -3\n# 0 packets\n");
}

TEST(import_capture, time_stamps_count_from_the_first_packet) {
    pcap_octets file;
    file.header(1).packet(100, 999999, FRAME).packet(101, 999, FRAME).packet(101, 1000, FRAME).packet(99, 0, FRAME);
    const trace_case from_zero = imported(file);
    ASSERT_EQ(from_zero.records.size(), 4U);
    EXPECT_EQ(from_zero.records[0].timestamp_ms, 0U);
    EXPECT_EQ(from_zero.records[1].timestamp_ms, 1U) << "1.000 ms later";
    EXPECT_EQ(from_zero.records[2].timestamp_ms, 1U) << "1.001 ms later";
    EXPECT_EQ(from_zero.records[3].timestamp_ms, 0U) << "before the first";
    EXPECT_EQ(from_zero.records[3].sequence, 4U);
    const trace_case later = imported(file, {.start_ms = 0xFFFFFFFF});
    EXPECT_EQ(later.records[0].timestamp_ms, 0xFFFFFFFFU);
    EXPECT_EQ(later.records[1].timestamp_ms, 0U) << "the clock of the router has 32 bits";
}

TEST(import_capture, link_headers_tell_the_direction) {
    const octet_vector lapd_in = {0, 0, 0x20, 0xFD, 0, 1, 9, 9, 9, 9, 9, 9, 9, 9, 0, 0x30, 0x02, 0x01};
    octet_vector lapd_out = lapd_in;
    lapd_out[1] = 4;
    const import_settings all_sent = {.sent = sent_everything{}};
    for (const std::uint32_t link_type : {204U, 205U, 206U, 207U}) {
        EXPECT_EQ(imported_packet(link_type, {0, 0xAA}, all_sent).flags, 0U) << link_type;
        EXPECT_EQ(imported_packet(link_type, {1, 0xAA}).flags, 1U) << link_type;
        EXPECT_EQ(imported_packet(link_type, {1, 0xAA}).data, octet_vector{0xAA}) << link_type;
    }
    EXPECT_EQ(imported_packet(177, lapd_in, all_sent).flags, 0U);
    EXPECT_EQ(imported_packet(177, lapd_out).flags, 1U);
    EXPECT_EQ(imported_packet(177, lapd_out).data, (octet_vector{0x02, 0x01}));
    EXPECT_EQ(imported_packet(177, lapd_out).original_length, 2);
    EXPECT_EQ(imported_packet(9, {0, 0xAA}, all_sent).flags, 1U);
    EXPECT_EQ(imported_packet(9, {1, 0xAA}).flags, 0U);
    EXPECT_EQ(imported_packet(9, {1, 0xAA}).data, (octet_vector{1, 0xAA}));
}

TEST(import_capture, a_cell_header_tells_the_connection) {
    const case_record sent = imported_packet(123, {0x82, 0x01, 0x23, 0x45, 0xAA});
    EXPECT_EQ(sent.flags, 1U);
    EXPECT_EQ(sent.info, 0x01234500U) << "VPI 1, VCI 0x2345";
    EXPECT_EQ(sent.data, octet_vector{0xAA});
    EXPECT_EQ(imported_packet(123, {0x02, 0x01, 0x23, 0x45, 0xAA}).flags, 0U);
    EXPECT_EQ(imported_packet(123, {0x82, 0x01, 0x23, 0x45}, {.channel_type = 6}).info, 0U);
}

TEST(import_capture, addresses_tell_what_was_sent) {
    octet_vector answer = FRAME;
    std::swap_ranges(answer.begin(), answer.begin() + 6, answer.begin() + 6);
    std::swap_ranges(answer.begin() + 26, answer.begin() + 30, answer.begin() + 30);
    EXPECT_EQ(imported_packet(1, FRAME, {.sent = ROUTER_MAC}).flags, 1U);
    EXPECT_EQ(imported_packet(1, answer, {.sent = ROUTER_MAC}).flags, 0U);
    EXPECT_EQ(imported_packet(1, FRAME, {.sent = ROUTER_IP}).flags, 1U);
    EXPECT_EQ(imported_packet(1, answer, {.sent = ROUTER_IP}).flags, 0U);
    const octet_vector ip(FRAME.begin() + 14, FRAME.end());
    EXPECT_EQ(imported_packet(101, ip, {.sent = ROUTER_IP}).flags, 1U);
    octet_vector ring = {0x10, 0x40};
    ring.insert(ring.end(), FRAME.begin(), FRAME.begin() + 12);
    ring[8] = 0x82;  // routed
    EXPECT_EQ(imported_packet(6, ring, {.sent = ROUTER_MAC}).flags, 1U);
    EXPECT_EQ(imported_packet(1, {0x02}, {.sent = ROUTER_MAC}).flags, 0U) << "too short to tell";
    EXPECT_EQ(import_error(pcap_octets().header(9), {.sent = ROUTER_IP}),
              "the address of --sent is not in the frames of channel type 1 (ISDN B-channel)");
    EXPECT_EQ(import_error(pcap_octets().header(101), {.sent = ROUTER_MAC}),
              "the address of --sent is not in the frames of channel type 131 (Tunnel)");
}

TEST(import_capture, a_record_holds_8192_octets) {
    const octet_vector large(9000, 0xAA);
    EXPECT_EQ(imported_packet(1, large).data.size(), 8192U);
    EXPECT_EQ(imported_packet(1, large).original_length, 9000);
    EXPECT_EQ(imported_packet(204, large).original_length, 8999);
    EXPECT_EQ(imported_packet(101, large).data.size(), 8192U) << "with the two octets of the tunnel";
    EXPECT_EQ(imported_packet(101, large).original_length, 9002);
    const auto longer = imported(pcap_octets().header(1).packet(0, 0, FRAME, 70000)).records.at(0);
    EXPECT_EQ(longer.original_length, 65535) << "as much as its field can tell";
    EXPECT_EQ(longer.data, FRAME);
}

TEST(import_capture, a_packet_shorter_than_its_header_is_named) {
    EXPECT_EQ(import_error(pcap_octets().header(177).packet(0, 0, octet_vector(16)).packet(0, 0, octet_vector(15))),
              "packet 2 at offset 56: 15 octets, but the header of link type 177 has 16");
    EXPECT_EQ(import_error(pcap_octets().header(123).packet(0, 0, octet_vector(3))),
              "packet 1 at offset 24: 3 octets, but the header of link type 123 has 4");
    EXPECT_EQ(import_error(pcap_octets().header(204).packet(0, 0, {})),
              "packet 1 at offset 24: 0 octets, but the header of link type 204 has 1");
    EXPECT_TRUE(imported_packet(1, {}).data.empty());
}

constexpr std::array<std::uint8_t, 3> UA = {0x02, 0x01, 0x7F};

/// A pcapng file whose interfaces have these link types, and the comments of ifwatch-extcap where there is a type.
pcapng_octets begun(std::initializer_list<std::pair<std::uint16_t, std::optional<int>>> interfaces) {
    pcapng_octets file;
    file.section();
    for (const auto& [link_type, noted] : interfaces) {
        const std::string comment = noted ? interface_type_comment(*noted) : "";
        file.interface(link_type, 1, octet_vector(comment.begin(), comment.end()));
    }
    return file;
}

TEST(import_capture, pcapng_tells_directions_and_what_was_lost) {
    pcapng_octets file = begun({{203, {}}});
    file.block(6, file.packet_body(0, 5'000'000, UA).word_option(2, 2));
    file.block(6, file.packet_body(0, 5'001'000, UA).word_option(2, 1).long_option(4, 2));
    const imported_text got(file.octets(), {.start_ms = 7});
    ASSERT_TRUE(got.outcome.done) << got.outcome.error;
    EXPECT_EQ(got.text,
              "# x: link type 203 (LAPD)\nchannel 0\noptions -2 -3\n"
              "record X 7\n  02 01 7F\n"
              "record R 8 sequence=4\n  02 01 7F\n"
              "# 2 packets\n");
}

TEST(import_capture, a_loss_is_at_most_what_a_trace_can_tell) {
    pcapng_octets file = begun({{203, {}}});
    file.block(6, file.packet_body(0, 0, UA).long_option(4, 5'000'000'000));
    EXPECT_NE(imported_text(file.octets(), {}).text.find("record R 0 sequence=2147483648\n"), std::string::npos);
}

TEST(import_capture, what_ifwatch_extcap_wrote_keeps_its_sequence_numbers) {
    pcapng_octets file = begun({{203, 0}});
    file.block(6, file.packet_body(0, 5'000'000, UA).long_option(5, 0x0000'0401'0000'0010));
    EXPECT_EQ(imported_text(file.octets(), {}).text,
              "# x: link type 203 (LAPD)\nchannel 0\noptions -2 -3\n"
              "record X 0 sequence=16 info=0x00000004\n  02 01 7F\n"
              "# 1 packet\n");
}

TEST(import_capture, interfaces_of_one_channel_type_are_one_case) {
    pcapng_octets file = begun({{203, {}}, {177, {}}});
    file.packet(0, 0, UA).packet(1, 0, octet_vector(17));
    const imported_text got(file.octets(), {});
    EXPECT_TRUE(got.outcome.done) << got.outcome.error;
    EXPECT_EQ(got.outcome.packets, 2U);
    EXPECT_EQ(got.outcome.left_out, 0U);
}

TEST(import_capture, packets_of_several_channel_types_are_named) {
    pcapng_octets file = begun({{1, {}}, {203, {}}, {147, {}}});
    file.packet(0, 0, FRAME).packet(1, 0, UA);
    EXPECT_EQ(imported_text(file.octets(), {}).outcome.error,
              "packet 2 at offset 180: it is of channel type 0 (ISDN D-channel), those before it of 6 (LAN); a case is "
              "one interface: split the capture first");
    EXPECT_TRUE(imported_text(file.octets(), {.channel_type = 0}).outcome.done) << "both as that type";
    pcapng_octets unknown = begun({{1, {}}, {147, {}}});
    unknown.packet(0, 0, FRAME).packet(1, 0, UA);
    EXPECT_EQ(imported_text(unknown.octets(), {}).outcome.error,
              "link type 147 fits no channel type; name one with --channel");
}

TEST(import_capture, one_interface_of_what_ifwatch_extcap_wrote_can_be_named) {
    pcapng_octets file = begun({{1, 6}, {203, 0}});
    file.packet(0, 0, FRAME).packet(1, 0, UA).packet(0, 0, FRAME);
    const imported_text lan(file.octets(), {.channel_type = 6});
    EXPECT_EQ(lan.outcome.packets, 3U);
    EXPECT_EQ(lan.outcome.left_out, 1U);
    const imported_text line(file.octets(), {.channel_type = 0});
    ASSERT_TRUE(line.outcome.done) << line.outcome.error;
    EXPECT_EQ(line.outcome.left_out, 2U);
    EXPECT_EQ(line.text, "# x: link type 203 (LAPD)\nchannel 0\noptions -2 -3\nrecord R 0\n  02 01 7F\n# 3 packets\n");
    EXPECT_TRUE(imported_text(file.octets(), {}).outcome.error.ends_with("; name the one of the case with --channel"));
    EXPECT_EQ(imported_text(file.octets(), {.channel_type = 1}).text,
              "# x: link type 1 (Ethernet)\nchannel 1\noptions -p -i\n# 3 packets\n")
        << "none is of that type";
}

TEST(import_capture, stops_when_its_text_cannot_be_written) {
    const test::octet_file input(pcap_octets().header(1).packet(0, 0, FRAME).octets());
    byte_stream stream(input.fd());
    const import_outcome outcome = import_capture(stream, {}, "x", [](std::string_view) { return false; });
    EXPECT_FALSE(outcome.done);
    EXPECT_FALSE(outcome.written);
    EXPECT_EQ(outcome.error, "");
}

TEST(export_capture, refuses_link_types_that_are_only_read) {
    octet_vector file;
    std::size_t left_out = 0;
    std::string error;
    EXPECT_FALSE(export_capture(case_of(6, {}), 113, file, left_out, error));
    EXPECT_EQ(error, "link type 113 (Linux cooked) is only read; name another one with --link-type");
}

TEST(export_capture, writes_the_link_type_that_tells_the_direction) {
    const case_record record = {.timestamp_ms = 61234, .flags = 1, .original_length = 5, .data = {0xAA, 0xAA, 0x03}};
    EXPECT_EQ(exported(case_of(1, record)),
              pcap_octets().packet(61, 234000, octet_vector{1, 0xAA, 0xAA, 0x03}, 6).octets());
    EXPECT_EQ(exported(case_of(0, record)),
              pcap_octets()
                  .packet(61, 234000,
                          octet_vector{0, 4, 0x20, 0xFD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x30, 0xAA, 0xAA, 3}, 21)
                  .octets());
    case_record cell = record;
    cell.info = 0x01234500;
    EXPECT_EQ(exported(case_of(3, cell)),
              pcap_octets().packet(61, 234000, octet_vector{0x82, 0x01, 0x23, 0x45, 0xAA, 0xAA, 0x03}, 9).octets());
    cell.data = {0x45};
    cell.flags = 0;
    EXPECT_EQ(exported(case_of(3, cell)),
              pcap_octets().packet(61, 234000, octet_vector{0x00, 0x01, 0x23, 0x45, 0x45}, 9).octets());
}

TEST(export_capture, a_tunnel_loses_its_two_octets) {
    EXPECT_EQ(exported(case_of(131, {.original_length = 40, .data = {0x00, 0x21, 0x45}})),
              pcap_octets().packet(0, 0, octet_vector{0x45}, 38).octets());
    EXPECT_EQ(exported(case_of(131, {.original_length = 1, .data = {0x00}})), pcap_octets().packet(0, 0, {}).octets());
}

TEST(export_capture, each_channel_type_has_its_link_type) {
    constexpr std::pair<int, std::uint32_t> rows[] = {
        {0, 177}, {1, 204},  {2, 123},  {3, 123},  {5, 101},   {6, 1},     {7, 1},   {8, 6},
        {9, 6},   {16, 207}, {23, 204}, {32, 107}, {118, 104}, {131, 101}, {135, 1},
    };
    for (const auto& [channel_type, link_type] : rows) {
        EXPECT_EQ(link_type_of(channel_type), link_type) << channel_type;
    }
    for (const int channel_type : {-2, -1, 4, 94, 169, 200}) {
        EXPECT_EQ(link_type_of(channel_type), std::nullopt) << channel_type;
    }
}

TEST(export_capture, another_link_type_can_be_told) {
    const case_record record = {.flags = 1, .original_length = 1, .data = {0xAA}};
    EXPECT_EQ(exported(case_of(1, record), 207), pcap_octets().packet(0, 0, octet_vector{1, 0xAA}).octets());
    EXPECT_EQ(exported(case_of(1, record), 9), pcap_octets().packet(0, 0, octet_vector{0xAA}).octets());
    EXPECT_EQ(exported(case_of(-2, record), 147), pcap_octets().packet(0, 0, octet_vector{0xAA}).octets());
    octet_vector file;
    std::size_t left_out = 0;
    std::string error;
    EXPECT_FALSE(export_capture(case_of(-2, record), {}, file, left_out, error));
    EXPECT_EQ(error, "no link type fits channel type -2 (PABX); name one with --link-type");
}

TEST(export_capture, what_is_no_frame_is_left_out) {
    trace_case source = case_of(3, {.flags = 0x80, .original_length = 1, .data = {1}});  // a cell
    source.records.push_back({.info = 7, .original_length = 1, .data = {2}});            // an event
    source.records.push_back({.info = 0x100, .original_length = 1, .data = {3}});
    octet_vector file;
    std::size_t left_out = 0;
    std::string error;
    ASSERT_TRUE(export_capture(source, {}, file, left_out, error));
    EXPECT_EQ(left_out, 2U);
    EXPECT_EQ(file.size(), 24U + 16 + 5);
    source.channel_type = 2;  // where the event code is a service access point
    file.clear();
    ASSERT_TRUE(export_capture(source, {}, file, left_out, error));
    EXPECT_EQ(left_out, 1U);
}

TEST(case_text, is_read_as_the_same_case) {
    const std::string text =
        "# a title\\nof one line\n"
        "channel -2\n"
        "interface 2100\n"
        "name Office \"#1\"\n"
        "options -2 -3\n"
        "options \n"
        "record R 1000\n"
        "  00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
        "  FF\n"
        "record X 1001 sequence=7 flags=0x00000081 info=0x01234507 original=64\n"
        "  AA\n"
        "record X 4294967295\n"
        "record R 0 flags=0x00000002 original=1\n";
    trace_case read;
    std::string error;
    ASSERT_TRUE(parse_case(text, read, error)) << error;
    EXPECT_EQ(case_text(read, "a title\nof one line"), text);
}

}  // namespace
}  // namespace ifwatch::convert
