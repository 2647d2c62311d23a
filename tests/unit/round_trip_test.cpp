// Every record of the golden cases and the samples as ifwatch-extcap writes it, read back: the record that comes of its
// packet is the router's. is_no_frame() tells which of them are packets of the interface for events. Of a frame a
// packet does not hold flags of more than eight bits, and VPI and VCI where there is no ATM; no router sends either,
// nor has a case one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "capture/channel_types.h"
#include "capture/own_capture.h"
#include "capture/packet_record.h"
#include "capture/pcapng_writer.h"
#include "capture/record_frame.h"
#include "extcap/bchannel_kinds.h"
#include "sim/case_file.h"
#include "sim/record_source.h"
#include "support/captured_packets.h"
#include "support/programs.h"

namespace ifwatch::capture {
namespace {

using octet_vector = std::vector<std::uint8_t>;

/// What came off the wire: its lengths as the program keeps them.
struct router_record {
    record_header header;
    std::uint32_t original_length = 0;
    octet_vector data;

    [[nodiscard]] octet_vector octets() const {
        octet_vector whole;
        sim::append_record(whole,
                           {header.timestamp_ms, header.record_flags, header.channel_info, header.sequence,
                            static_cast<std::uint16_t>(original_length), data},
                           -1);
        return whole;
    }
};

/// What is no packet of the interface's own link type: events of the line, and records of which nothing is left without
/// the octets in front.
bool is_no_frame(int channel_type, const router_record& record) {
    const std::uint32_t event = record.header.channel_info & 0xFF;
    const bool about_no_frame = event != 0 && channel_type != CHANNEL_ATM_OLD && find_line_error(event) == nullptr;
    const bool cell = (record.header.record_flags & 0x80) != 0;
    const bool atm = channel_type == CHANNEL_ATM || channel_type == CHANNEL_ATM_OLD;
    const std::size_t front = channel_type == CHANNEL_PABX     ? 6
                              : channel_type == CHANNEL_TUNNEL ? 2
                              : atm && cell                    ? 4
                                                               : 0;
    return about_no_frame || record.data.size() <= front;
}

std::vector<std::filesystem::path> all_cases() {
    const std::filesystem::path samples = test::SAMPLES_DIRECTORY;
    std::vector<std::filesystem::path> found;
    for (const auto& folder : {samples, samples.parent_path() / "tests" / "golden"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (entry.path().extension() == ".case") {
                found.push_back(entry.path());
            }
        }
    }
    return found;
}

std::vector<router_record> records_of(const sim::trace_case& source) {
    std::vector<router_record> records;
    for (const sim::case_record& record : source.records) {
        if (record.data.size() <= RECORD_DATA_MAXIMUM) {
            records.push_back({{record.timestamp_ms, record.flags, record.info, record.sequence},
                               record.data.empty() ? 0U : record.original_length,
                               record.data});
        }
    }
    return records;
}

/// A capture of the records, and how many of them are frames.
struct written_capture {
    octet_vector file;
    std::size_t frames = 0;

    written_capture(int channel_type, const link_layer& link, std::vector<router_record>& records) {
        put_section(channel_type, link);
        display_context context;
        context.channel_type = channel_type;
        link_frame frame;
        block_buffer block;
        for (router_record& record : records) {
            context.header = &record.header;
            context.original_length = record.original_length;
            context.payload = octets_of(record.data);
            const octet_vector whole = record.octets();
            const bool is_frame = make_frame(context, link, frame);
            frames += is_frame ? 1 : 0;
            if (!is_frame) {
                make_event(context, whole, frame);
            }
            build_enhanced_packet(block, {.interface_id = is_frame ? (frame.cell ? 1U : 0U) : 2U,
                                          .time_ms = record.header.timestamp_ms,
                                          .prefix = frame.prefix(),
                                          .data = frame.data,
                                          .original_length = frame.original_length,
                                          .flags = frame.flags,
                                          .id = frame.id,
                                          .comment = frame.comment.text()});
            put(block);
        }
    }

private:
    void put_section(int channel_type, const link_layer& link) {
        block_buffer block;
        int described = 0;
        build_section_header(block, "round trip");
        put(block);
        for (const link_layer& layer : {link, cell_link_layer(), event_link_layer()}) {
            const bool events = ++described == 3;
            build_interface_description(block, {.link_type = layer.type,
                                                .name = "",
                                                .description = "",
                                                .filter = "",
                                                .comment = interface_type_comment(channel_type, events)});
            put(block);
        }
    }
    void put(const block_buffer& block) { file.insert(file.end(), block.begin(), block.end()); }
};

void expect_equal(const router_record& wanted, const packet_record& made, std::span<const std::uint8_t> data) {
    EXPECT_TRUE(made.own_sequence);
    EXPECT_EQ(made.header.sequence, wanted.header.sequence);
    EXPECT_EQ(made.header.timestamp_ms, wanted.header.timestamp_ms);
    EXPECT_EQ(made.header.record_flags, wanted.header.record_flags);
    EXPECT_EQ(made.header.channel_info, wanted.header.channel_info);
    EXPECT_EQ(made.original_length, wanted.original_length);
    EXPECT_EQ(octet_vector(data.begin(), data.begin() + made.captured_length), wanted.data);
}

/// Reads the capture of a case back. How many of its records were frames.
std::size_t check(const sim::trace_case& source, const link_layer& link) {
    std::vector<router_record> records = records_of(source);
    const written_capture written(source.channel_type, link, records);
    const auto no_frames = std::ranges::count_if(
        records, [&](const router_record& each) { return is_no_frame(source.channel_type, each); });
    EXPECT_EQ(written.frames, records.size() - static_cast<std::size_t>(no_frames));
    const test::captured_packets got(written.file);
    EXPECT_EQ(got.end, packet_read::END) << got.error;
    EXPECT_EQ(got.packets.size(), records.size());
    record_clock clock;
    std::array<std::uint8_t, RECORD_DATA_MAXIMUM> data{};
    for (std::size_t i = 0; i < std::min(got.packets.size(), records.size()); ++i) {
        test::kept_packet packet = got.packets[i];
        packet.data = packet.octets;
        packet.comment = packet.text;
        const auto of_packet = find_packet_source(packet.from, std::nullopt);
        EXPECT_TRUE(of_packet && of_packet->own && of_packet->channel_type == source.channel_type);
        packet_record made;
        if (of_packet && make_packet_record(packet, *of_packet, sent_nothing{}, clock, data, made)) {
            expect_equal(records[i], made, data);
        } else {
            ADD_FAILURE() << "no record of packet " << packet.number;
        }
    }
    return written.frames;
}

TEST(round_trip, of_every_record) {
    std::size_t frames = 0;
    std::set<int> channel_types;
    for (const std::filesystem::path& path : all_cases()) {
        SCOPED_TRACE(path);
        sim::trace_case source;
        std::string error;
        ASSERT_TRUE(sim::read_case_file(path, source, error)) << error;
        channel_types.insert(source.channel_type);
        const auto kinds = extcap::bchannel_kinds();
        for (const extcap::bchannel_kind& kind : kinds.first(source.channel_type == CHANNEL_B ? kinds.size() : 1)) {
            frames += check(source, find_link_layer(source.channel_type, kind.link));
        }
    }
    EXPECT_GT(frames, 10'000U);
    EXPECT_THAT(channel_types,
                testing::IsSupersetOf({-2, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 23, 32, 94, 118, 131, 135}));
}

}  // namespace
}  // namespace ifwatch::capture
