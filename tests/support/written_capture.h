#pragma once

#include <cstdint>
#include <vector>

#include "capture/own_capture.h"
#include "capture/pcapng_writer.h"
#include "capture/record_frame.h"
#include "sim/case_file.h"

namespace ifwatch::test {

/// The pcapng file that ifwatch-extcap writes of a case, with both interfaces of an ATM one whatever the type.
struct written_capture {
    std::vector<std::uint8_t> file;
    std::vector<std::size_t> frames;  // the records that are in it, by their number from 0

    written_capture(const sim::trace_case& source, const capture::link_layer& link) {
        describe(source.channel_type, link);
        display_context context;
        context.channel_type = source.channel_type;
        capture::link_frame frame;
        for (std::size_t i = 0; i < source.records.size(); ++i) {
            const sim::case_record& record = source.records[i];
            const record_header header{record.timestamp_ms, record.flags, record.info, record.sequence};
            std::vector<std::uint8_t> data = record.data;
            context.header = &header;
            context.original_length = record.original_length;
            context.payload = octets_of(data);
            if (make_frame(context, link, frame)) {
                put_packet(frame, record.timestamp_ms);
                frames.push_back(i);
            }
        }
    }

private:
    void describe(int channel_type, const capture::link_layer& link) {
        capture::build_section_header(block_, "a test");
        put();
        for (const capture::link_layer& layer : {link, capture::cell_link_layer()}) {
            capture::build_interface_description(block_, {.link_type = layer.type,
                                                          .name = "ifwatch-1000",
                                                          .description = "",
                                                          .filter = "",
                                                          .comment = capture::interface_type_comment(channel_type)});
            put();
        }
    }
    void put_packet(const capture::link_frame& frame, std::uint32_t time_ms) {
        capture::build_enhanced_packet(block_, {.interface_id = frame.cell ? 1U : 0U,
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
