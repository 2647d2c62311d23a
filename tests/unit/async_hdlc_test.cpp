#include "display/async_hdlc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "display/fcs16.h"
#include "display/mode_flags.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

using bytes = std::vector<std::uint8_t>;

bytes framed(bytes frame) {
    const auto fcs = static_cast<std::uint16_t>(~fcs16(FCS16_START, frame));
    frame.push_back(static_cast<std::uint8_t>(fcs & 0xFF));
    frame.push_back(static_cast<std::uint8_t>(fcs >> 8));
    bytes stream{0x7E};
    for (const std::uint8_t octet : frame) {
        if (octet == 0x7E || octet == 0x7D) {
            stream.push_back(0x7D);
            stream.push_back(octet ^ 0x20);
        } else {
            stream.push_back(octet);
        }
    }
    stream.push_back(0x7E);
    return stream;
}

bytes content(octets frame) {
    const auto run = frame.run(0, frame.length);
    return {run.begin(), run.end()};
}

/// Everything that one octet at a time brings out of a stream.
std::vector<bytes> frames_by_octets(bytes stream) {
    async_state state;
    std::vector<bytes> frames;
    for (std::uint8_t& octet : stream) {
        async_scanner scanner{.rest = octets_of({&octet, 1}), .state = state};
        if (async_next_frame(scanner)) {
            frames.push_back(content(scanner.frame));
        }
    }
    return frames;
}

TEST(async_next_frame, every_octet_value_survives) {
    bytes frame(256);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i] = static_cast<std::uint8_t>(i);
    }
    auto stream = framed(frame);
    async_state state;
    async_scanner scanner{.rest = octets_of(stream), .state = state};
    ASSERT_TRUE(async_next_frame(scanner));
    EXPECT_EQ(content(scanner.frame), frame);
    EXPECT_EQ(scanner.rest.length, 0);
    EXPECT_EQ(frames_by_octets(stream), std::vector<bytes>{frame});
}

TEST(async_next_frame, a_slice_may_end_anywhere) {
    const bytes frame{0xFF, 0x03, 0x7D, 0x7E, 0x00, 0x41};
    const auto stream = framed(frame);
    for (std::size_t cut = 1; cut < stream.size(); ++cut) {
        bytes first(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(cut));
        bytes second(stream.begin() + static_cast<std::ptrdiff_t>(cut), stream.end());
        async_state state;
        async_scanner head{.rest = octets_of(first), .state = state};
        EXPECT_FALSE(async_next_frame(head)) << cut;
        EXPECT_EQ(head.error, framing_error::NONE) << cut;
        async_scanner tail{.rest = octets_of(second), .state = state};
        ASSERT_TRUE(async_next_frame(tail)) << cut;
        EXPECT_EQ(content(tail.frame), frame) << cut;
    }
}

/// What a stream that is thrown away whole leaves behind.
struct thrown_away {
    framing_error error = framing_error::NONE;
    int count = 0;

    bool operator==(const thrown_away&) const = default;
};

thrown_away throw_away(bytes stream) {
    async_state state;
    async_scanner scanner{.rest = octets_of(stream), .state = state};
    EXPECT_FALSE(async_next_frame(scanner));
    EXPECT_EQ(scanner.rest.length, 0);
    EXPECT_EQ(state.count, 0);
    EXPECT_EQ(state.fcs, FCS16_START);
    EXPECT_EQ(state.escape, 0U);
    return {scanner.error, scanner.error_count};
}

TEST(async_next_frame, errors_tell_what_was_stored) {
    EXPECT_EQ(throw_away({0x7E, 0x41, 0x7E}), (thrown_away{framing_error::TOO_SMALL, 1}));
    EXPECT_EQ(throw_away({0x41, 0x42, 0x43, 0x7E}), (thrown_away{framing_error::TOO_SMALL, 3}));
    EXPECT_EQ(throw_away({0x41, 0x42, 0x43, 0x44, 0x7E}), (thrown_away{framing_error::FCS, 4}));
    EXPECT_EQ(throw_away({0x41, 0x7D, 0x7E}), (thrown_away{framing_error::ABORT, 1}));
    EXPECT_EQ(throw_away(bytes(1601, 0x41)), (thrown_away{framing_error::TOO_LONG, 1600}));
}

TEST(async_next_frame, ends_where_the_octets_end_though_more_are_declared) {
    bytes stream{0x41, 0x42};
    async_state state;
    async_scanner scanner{.rest = octets_of(stream).at(0, 100), .state = state};
    EXPECT_FALSE(async_next_frame(scanner));
    EXPECT_EQ(state.count, 2);
}

struct shown_frame {
    bytes data;
    int held = 0;
};

/// The frames that keep_frame was given.
std::vector<shown_frame>& kept_frames() {
    static std::vector<shown_frame> kept;
    return kept;
}

void keep_frame(octets frame, std::uint32_t /*record_flags*/, display_context& /*context*/) {
    kept_frames().push_back({content(frame), frame.held()});
}

std::string packet_output(bytes slice, display_context& context, std::uint32_t record_flags = 1) {
    captured_output output;
    kept_frames().clear();
    dump_data_packet(octets_of(slice), record_flags, context, keep_frame);
    return output.take();
}

TEST(dump_data_packet, a_frame_ends_before_its_check_sequence) {
    display_context context;
    EXPECT_EQ(packet_output(framed({1, 2, 3}), context), "             DATA PACKET   [0003]\n\n");
    const auto shown = kept_frames();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].data, (bytes{1, 2, 3}));
    EXPECT_EQ(shown[0].held, 3);
}

/// Decodes a frame as one that carries a stream in the same direction again.
void reassemble_within(octets frame, std::uint32_t record_flags, display_context& context) {
    keep_frame(frame, record_flags, context);
    auto inner = framed({9, 9, 9, 9, 9, 9, 9, 9});
    dump_data_packet(octets_of(inner), record_flags, context, keep_frame);
    keep_frame(frame, record_flags, context);
}

TEST(dump_data_packet, a_frame_stays_whole_while_its_contents_are_reassembled) {
    display_context context;
    captured_output output;
    kept_frames().clear();
    auto outer = framed({1, 2, 3, 4});
    dump_data_packet(octets_of(outer), 1, context, reassemble_within);
    const auto shown = kept_frames();
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_EQ(shown[0].data, (bytes{1, 2, 3, 4}));
    EXPECT_EQ(shown[1].data, bytes(8, 9));
    EXPECT_EQ(shown[2].data, (bytes{1, 2, 3, 4}));
}

TEST(dump_data_packet, any_flag_of_the_record_chooses_the_first_state) {
    display_context context;
    packet_output({0x41}, context, 0x80);
    packet_output({0x41, 0x42}, context, 0);
    EXPECT_EQ(context.async[0].count, 1);
    EXPECT_EQ(context.async[1].count, 2);
}

TEST(dump_data_packet, the_length_is_taken_as_sixteen_bits) {
    display_context context;
    bytes slice{0x41, 0x42, 0x43};
    captured_output output;
    dump_data_packet(octets_of(slice).at(0, 0x10002), 1, context, keep_frame);
    EXPECT_EQ(output.take(), "             DATA_CONT   [0002]\n");
    EXPECT_EQ(context.async[0].count, 2);
}

TEST(dump_data_packet, the_reserved_mode_has_octets_in_front_of_the_slice) {
    display_context context;
    context.mode_flags = MODE_RESERVED;
    EXPECT_EQ(packet_output({1, 2, 3, 4}, context), "");
    EXPECT_EQ(packet_output({1, 2, 3, 4, 0x80, 0x41}, context), "             DATA_CONT   [0001]\n");
    EXPECT_EQ(context.async[0].count, 1);
    EXPECT_EQ(packet_output({1, 2, 3, 4, 0x7F, 5, 0x41, 0x42}, context), "             DATA_CONT   [0002]\n");
    EXPECT_EQ(context.async[0].count, 3);
    EXPECT_EQ(packet_output({1, 2, 3, 4, 0x80}, context), "");
    EXPECT_EQ(packet_output({1, 2, 3, 4, 0x00}, context), "");
}

TEST(dump_data_packet, the_whole_frame_is_shown_when_it_is_asked_for) {
    display_context context;
    context.mode_flags = MODE_ASYNC_HDLC | MODE_ASYNC_HEX;
    const auto lines = [&] {
        const std::string text = packet_output(framed(bytes(50, 0x41)), context);
        return std::count(text.begin(), text.end(), '\n');
    };
    EXPECT_EQ(lines(), 1 + 3 + 1);  // 38 octets
    context.mode_flags |= MODE_ASYNC_FULL_HEX;
    EXPECT_EQ(lines(), 1 + 4 + 1);
}

TEST(dump_text, prints_what_is_declared_and_held) {
    bytes data{'a', 0x1F, ' ', 0x7F, '~', 0xE4};
    captured_output output;
    dump_text(octets_of(data));
    EXPECT_EQ(output.take(), "\t\ta  1F    7F ~  E4 \n");
    dump_text(octets_of(data).at(0, 1));
    EXPECT_EQ(output.take(), "\t\ta  \n");
    dump_text(octets_of(data).at(5, 9));
    EXPECT_EQ(output.take(), "\t\tE4 \n");
    dump_text(octets_of(data).at(0, -1));
    EXPECT_EQ(output.take(), "\t\t\n");
}

}  // namespace
}  // namespace ifwatch
