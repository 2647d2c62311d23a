#pragma once

#include <cstdint>
#include <vector>

#include "capture/own_capture.h"
#include "capture/pcapng_writer.h"
#include "capture/record_frame.h"
#include "cases/case_file.h"
#include "cases/record_source.h"

namespace ifwatch::test {

/// The pcapng file that ifwatch-extcap writes of a case, with the interfaces for frames, cells and events whatever the
/// type.
struct written_capture {
    std::vector<std::uint8_t> file;
    std::size_t frames = 0;  // of the records; the others are events

    written_capture(const cases::trace_case& source, const capture::link_layer& link) {
        describe(source.channel_type, link);
        display_context context;
        context.channel_type = source.channel_type;
        capture::link_frame frame;
        for (const cases::case_record& record : source.records) {
            const record_header header{record.timestamp_ms, record.flags, record.info, record.sequence};
            std::vector<std::uint8_t> data = record.data;
            context.header = &header;
            context.original_length = record.original_length;
            context.payload = octets_of(data);
            std::vector<std::uint8_t> whole;
            cases::append_record(whole, record, -1);
            const bool is_frame = make_frame(context, link, frame);
            if (!is_frame) {
                make_event(context, whole, frame);
            }
            frames += is_frame ? 1 : 0;
            put_packet(is_frame ? (frame.cell ? CELLS : FRAMES) : EVENTS, frame, record.timestamp_ms);
        }
    }

private:
    enum port : std::uint8_t { FRAMES, CELLS, EVENTS };

    void describe(int channel_type, const capture::link_layer& link) {
        capture::build_section_header(block_, "a test");
        put();
        const capture::link_layer layers[] = {link, capture::cell_link_layer(), capture::event_link_layer()};
        for (const port each : {FRAMES, CELLS, EVENTS}) {
            capture::build_interface_description(
                block_, {.link_type = layers[each].type,
                         .name = "ifwatch-1000",
                         .description = "",
                         .filter = "",
                         .comment = capture::interface_type_comment(channel_type, each == EVENTS)});
            put();
        }
    }
    void put_packet(port where, const capture::link_frame& frame, std::uint32_t time_ms) {
        capture::build_enhanced_packet(block_, {.interface_id = where,
                                                .time_ms = time_ms,
                                                .prefix = frame.prefix(),
                                                .data = frame.data,
                                                .original_length = frame.original_length,
                                                .flags = frame.flags,
                                                .lost = 1,
                                                .id = frame.id,
                                                .comment = frame.comment.text()});
        put();
    }
    void put() { file.insert(file.end(), block_.begin(), block_.end()); }

    capture::block_buffer block_;
};

}  // namespace ifwatch::test
