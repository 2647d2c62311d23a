#include "display/record_display.h"

#include <algorithm>

#include "base/hex_dump.h"
#include "base/print.h"
#include "display/channel_display.h"
#include "display/l1_event.h"
#include "display/mode_flags.h"

namespace ifwatch {

namespace {

constexpr std::uint32_t EVENT_LAYER1 = 7;      // an event code: the record has no direction and no cell header
constexpr std::size_t OUTPUT_PER_OCTET = 512;  // characters, at most
constexpr std::size_t OUTPUT_PER_RECORD = 4096;
constexpr int HEX_PREFIX = 38;  // octets shown without -!

shown_record begin_record(display_context& context) {
    shown_record record{.context = context,
                        .header = *context.header,
                        .payload = context.payload,
                        .original_length = context.original_length,
                        .event_code = context.header->channel_info & 0xFF};
    if (record.event_code != EVENT_LAYER1) {
        record.direction = (record.header.record_flags & RECORD_SENT) != 0 ? 'X' : 'R';
        record.has_cell_header = (record.header.record_flags & RECORD_CELL_HEADER) != 0;
    }
    return record;
}

/// Writes the times since the first and the previous record, or a bare line end; then `time` is the previous one.
void take_time(text_sink& out, display_context& context, std::uint32_t time) {
    if (context.first_time == 0 && !context.zero_is_time) {
        context.first_time = time;
        context.previous_time = time;
    }
    if ((context.mode_flags & MODE_DELTA_TIME) != 0) {
        const std::uint32_t since_first = time - context.first_time;
        const std::uint32_t since_previous = time - context.previous_time;
        print_to<"         | %03ld.%03ld+%ld.%03ld\n">(out, since_first / 1000, since_first % 1000,
                                                       since_previous / 1000, since_previous % 1000);
    } else {
        put(out, '\n');
    }
    context.previous_time = time;
}

void show_payload(shown_record& record, const channel_display& display) {
    const std::uint32_t flags = record.context.mode_flags;
    if ((flags & (MODE_HEX | MODE_FULL_HEX)) != 0) {
        const int length = record.payload.length;
        hex_dump(record.payload, (flags & MODE_FULL_HEX) != 0 ? length : std::min(length, HEX_PREFIX), 16, 6);
    }
    if ((flags & ~(MODE_HEX | MODE_FULL_HEX)) == 0) {
        return;
    }
    if (record.original_length == 0) {
        print<"\n!!! Warning: empty DATA message !!!">();
    } else if (display.payload != nullptr) {
        display.payload(record);
    }
}

/// Shows a record up to the line end that closes it. False for a record without one: an event, whose line is complete,
/// and a record that is not shown.
bool show_record(display_context& context) {
    shown_record record = begin_record(context);
    const std::uint32_t time = record.header.timestamp_ms;
    report_lost_records(context);
    text_buffer<64> delta;
    take_time(delta, context, time);
    text_buffer<256> header;
    print_to<"%06ld.%03ld ">(header, time / 1000, time % 1000);
    const channel_display& display = find_channel_display(context.channel_type);
    if (!display.header(header, record)) {
        return false;
    }
    if (record.event_code != 0) {
        dump_l1_event(record.header, record.payload, record.original_length, header.text(), delta.text());
        return false;
    }
    print<"%sDATA[%04ld]   %s">(header.text(), record.original_length, delta.text());
    show_payload(record, display);
    return true;
}

}  // namespace

void apply_default_flags(display_context& context) {
    std::uint32_t meaningless = 0;
    std::uint32_t defaults = MODE_HEX | MODE_IP | MODE_PPP;
    if (context.channel_type == 0 || context.channel_type == -2) {
        meaningless = MODE_FAX | MODE_FAX_AT;
        defaults = MODE_HEX | MODE_LAYER2_ASKED | MODE_LAYER3_ASKED;
    } else if (context.channel_type == 1) {
        defaults = MODE_HEX;
    }
    context.mode_flags &= ~meaningless;
    if (context.mode_flags == 0) {
        context.mode_flags = defaults;
    }
}

void report_lost_records(display_context& context) {
    const std::uint32_t sequence = context.header->sequence;
    const std::uint32_t expected = context.expected_sequence + 1;
    if (expected != 1 && expected != sequence) {
        print<"### %d messages have been lost %d %d\n">(sequence - expected, sequence, expected);
    }
    context.expected_sequence = sequence;
}

std::size_t record_output_bound(const display_context& context) {
    int octets_held = context.payload.held();
    for (const async_state& state : context.async) {
        octets_held += state.count;
    }
    for (const pptp_state& state : context.pptp) {
        octets_held += state.kept();
    }
    return OUTPUT_PER_RECORD + OUTPUT_PER_OCTET * static_cast<std::size_t>(octets_held);
}

void display_record(display_context& context) {
    const std::size_t line_end = 1;
    begin_bounded_output(record_output_bound(context) - line_end);
    const bool shown = show_record(context);
    end_bounded_output();
    if (shown) {
        print<"\n">();
    }
}

}  // namespace ifwatch
