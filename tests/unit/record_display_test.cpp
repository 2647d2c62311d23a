#include "display/record_display.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "display/mode_flags.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

constexpr int B_CHANNEL = 1;
constexpr int TOKEN_RING = 9;
constexpr std::size_t LEVELS = 14;
constexpr std::size_t FACILITIES = 100;

/// 802.3 frames in one another, each an X.25 packet, too, whose facilities are the same octets at the end: what is
/// printed grows with the octets times the levels.
std::vector<std::uint8_t> flooding_frame() {
    constexpr std::size_t level_length = 17;
    constexpr std::size_t tail = level_length * LEVELS + 5;
    constexpr std::size_t end = tail + 2 * FACILITIES;
    std::vector<std::uint8_t> frame;
    for (std::size_t level = 0; level < LEVELS; ++level) {
        const std::size_t start = level_length * level;
        const auto facilities = static_cast<std::uint8_t>(tail - (start + 7));
        const auto length = static_cast<std::uint8_t>((end - start - 14) & 0xFF);
        const auto length_high = static_cast<std::uint8_t>((end - start - 14) >> 8);
        const std::vector<std::uint8_t> header = {0x10, 1, 0x0B, 0,           0xFF,   0xC7, facilities, 0, 0,
                                                  0,    0, 0,    length_high, length, 1,    0,          3};
        frame.insert(frame.end(), header.begin(), header.end());
    }
    const std::vector<std::uint8_t> call = {0x10, 1, 0x0B, 0, 0xFF};
    frame.insert(frame.end(), call.begin(), call.end());
    for (std::size_t i = 0; i < FACILITIES; ++i) {
        frame.push_back(0xD1);
        frame.push_back(0);
    }
    return frame;
}

struct one_record {
    std::vector<std::uint8_t> octets;
    record_header header{.timestamp_ms = 1000, .sequence = 1};
    display_context context;

    one_record(int channel_type, std::uint32_t mode_flags, std::vector<std::uint8_t> data) : octets(std::move(data)) {
        context.channel_type = channel_type;
        context.mode_flags = mode_flags;
        context.header = &header;
        context.payload = octets_of(octets);
        context.original_length = static_cast<std::uint32_t>(octets.size());
    }
};

TEST(display_record, a_frame_made_to_flood_is_cut_at_the_bound) {
    one_record flood(TOKEN_RING, MODE_LAYER2 | MODE_LAYER3, flooding_frame());
    const std::size_t bound = 4096 + 512 * flood.octets.size();
    EXPECT_EQ(record_output_bound(flood.context), bound);
    captured_output output;
    display_record(flood.context);
    const std::string printed = output.take();
    EXPECT_EQ(printed.size(), bound);
    EXPECT_EQ(printed.back(), '\n') << "the line end of the record stands all the same";
}

TEST(display_record, callback_numbers_of_a_whole_packet_are_cut_at_the_bound) {
    std::vector<std::uint8_t> packet = {0xFF, 0x03, 0xC0, 0x29, 2, 1, 0x1F, 0xFC};
    while (packet.size() < 8192) {  // options of six octets, each with a number that nothing ends
        packet.insert(packet.end(), {2, 6, 5, 1, '0', '0'});
    }
    packet.resize(8192);
    one_record flood(B_CHANNEL, MODE_PPP, packet);
    captured_output output;
    display_record(flood.context);
    const std::string printed = output.take();
    EXPECT_EQ(printed.size(), 4096 + 512 * packet.size());
    const std::size_t first = printed.find("Callback Number: ");
    EXPECT_EQ(printed.find('\n', first) - first, std::string("Callback Number: ").size() + packet.size() - 12)
        << "a number is not cut before the end of the packet";
}

TEST(record_output_bound, counts_octets_that_earlier_records_left) {
    one_record record(1, MODE_ASYNC_HDLC, {0x7E});
    EXPECT_EQ(record_output_bound(record.context), 4096U + 512U);
    record.context.async[1].count = 10;
    record.context.pptp[0].count = 5;
    EXPECT_EQ(record_output_bound(record.context), 4096U + 512U * 16U);
    record.context.pptp[0].count = 300;
    EXPECT_EQ(record_output_bound(record.context), 4096U + 512U * (11U + 256U)) << "of a long message 256 are held";
}

TEST(apply_default_flags, by_channel_type) {
    const auto flags_of = [](int channel_type, std::uint32_t asked) {
        display_context context;
        context.channel_type = channel_type;
        context.mode_flags = asked;
        apply_default_flags(context);
        return context.mode_flags;
    };
    for (const int channel_type : {0, -2}) {
        EXPECT_EQ(flags_of(channel_type, 0), 0x03000001U);
        EXPECT_EQ(flags_of(channel_type, 0x4080), 0x03000001U) << "fax means nothing there";
        EXPECT_EQ(flags_of(channel_type, 0x4081), 0x00000001U);
    }
    EXPECT_EQ(flags_of(1, 0), 0x00000001U);
    EXPECT_EQ(flags_of(1, 0x4080), 0x00004080U);
    for (const int channel_type : {2, 3, 4, 6, 131, 200, -1}) {
        EXPECT_EQ(flags_of(channel_type, 0), 0x00000109U);
        EXPECT_EQ(flags_of(channel_type, 0x80), 0x00000080U);
    }
}

}  // namespace
}  // namespace ifwatch
