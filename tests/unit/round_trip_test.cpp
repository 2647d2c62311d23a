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
#include "cases/case_file.h"
#include "extcap/bchannel_kinds.h"
#include "support/captured_packets.h"
#include "support/programs.h"
#include "support/written_capture.h"

namespace ifwatch::capture {
namespace {

using octet_vector = std::vector<std::uint8_t>;

/// What is no packet of the interface's own link type: events of the line, and records of which nothing is left without
/// the octets in front.
bool is_no_frame(int channel_type, const cases::case_record& record) {
    const std::uint32_t event = record.info & 0xFF;
    const bool about_no_frame = event != 0 && channel_type != CHANNEL_ATM_OLD && find_line_error(event) == nullptr;
    const bool cell = (record.flags & 0x80) != 0;
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

void expect_equal(const cases::case_record& wanted, const packet_record& made) {
    EXPECT_TRUE(made.own_sequence);
    EXPECT_EQ(made.header.sequence, wanted.sequence);
    EXPECT_EQ(made.header.timestamp_ms, wanted.timestamp_ms);
    EXPECT_EQ(made.header.record_flags, wanted.flags);
    EXPECT_EQ(made.header.channel_info, wanted.info);
    EXPECT_EQ(made.original_length, wanted.original_length);
    EXPECT_EQ(octet_vector(made.octets.begin(), made.octets.end()), wanted.data);
}

/// Reads the capture of a case back. How many of its records were frames.
std::size_t check(const cases::trace_case& source, const link_layer& link) {
    const test::written_capture written(source, link);
    const auto no_frames = std::ranges::count_if(
        source.records, [&](const cases::case_record& each) { return is_no_frame(source.channel_type, each); });
    EXPECT_EQ(written.frames, source.records.size() - static_cast<std::size_t>(no_frames));
    const test::captured_packets got(written.file);
    EXPECT_EQ(got.end, packet_read::END) << got.error;
    EXPECT_EQ(got.packets.size(), source.records.size());
    record_clock clock;
    std::array<std::uint8_t, RECORD_DATA_MAXIMUM> data{};
    for (std::size_t i = 0; i < std::min(got.packets.size(), source.records.size()); ++i) {
        test::kept_packet packet = got.packets[i];
        packet.data = packet.octets;
        packet.comment = packet.text;
        const auto of_packet = find_packet_source(packet.from, std::nullopt);
        EXPECT_TRUE(of_packet && of_packet->own && of_packet->channel_type == source.channel_type);
        packet_record made;
        if (of_packet && make_packet_record(packet, *of_packet, sent_nothing{}, clock, data, made)) {
            expect_equal(source.records[i], made);
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
        cases::trace_case source;
        std::string error;
        ASSERT_TRUE(cases::read_case_file(path, source, error)) << error;
        std::erase_if(source.records,
                      [](const cases::case_record& record) { return record.data.size() > RECORD_DATA_MAXIMUM; });
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
