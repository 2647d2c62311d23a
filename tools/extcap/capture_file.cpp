#include "extcap/capture_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/byte_order.h"
#include "capture/own_capture.h"
#include "trace/ifc_types.h"
#include "trace/record_buffer.h"
#include "trace/record_stream.h"

namespace ifwatch::extcap {

namespace {

using namespace capture;

constexpr std::size_t BATCH = std::size_t{32} << 10;
constexpr const char* PORT_NAMES[captured_line::PORTS] = {"", " cells", " events"};
constexpr std::size_t ORIGINAL_LENGTH = 20;  // where a record has it

const link_layer& link_of(const captured_line& line, captured_line::port port) {
    switch (port) {
        case captured_line::CELLS:
            return cell_link_layer();
        case captured_line::EVENTS:
            return event_link_layer();
        default:
            return line.link;
    }
}

}  // namespace

capture_file::capture_file(const plugin_options& options, int fifo) : options_(options), fifo_(fifo) {
    init_display_context(context_);
}

void capture_file::describe(captured_line& line) {
    line.link = find_link_layer(line.channel_type, options_.bchannels.of(line.index).link);
    line.ids = {};
    describe_port(line, captured_line::FRAMES);
}

void capture_file::describe_port(captured_line& line, captured_line::port port) {
    if (!begun_) {
        begun_ = true;
        build_section_header(block_, "ifwatch-extcap " EXTCAP_VERSION);
        put_block();
    }
    const std::string index = std::to_string(line.index);
    const link_layer& link = link_of(line, port);
    const auto length = static_cast<std::uint32_t>(options_.capture_length);
    const std::uint32_t front = port == captured_line::EVENTS ? RECORD_HEADER_LENGTH : prefix_length(link);
    build_interface_description(block_,
                                {.link_type = link.type,
                                 .snapshot_length = length != 0 ? length + front : 0,
                                 .name = "ifwatch-" + index + PORT_NAMES[port],
                                 .description = "Interface " + index + " of " + options_.host + ": " +
                                                ifc_type_entry(line.channel_type).name + PORT_NAMES[port],
                                 .filter = options_.filter,
                                 .comment = interface_type_comment(line.channel_type, port == captured_line::EVENTS)});
    line.ids[port] = static_cast<std::uint32_t>(counts_.size());
    counts_.emplace_back();
    put_block();
}

std::uint32_t capture_file::port_id(captured_line& line, captured_line::port port) {
    if (!line.ids[port]) {
        describe_port(line, port);
    }
    return *line.ids[port];
}

void capture_file::put_record(captured_line& line, std::span<std::uint8_t> record, const record_notes& notes) {
    const record_header header = parse_protocol_part(record.subspan<4, PROTO_LENGTH>());
    const auto data = record.subspan(RECORD_HEADER_LENGTH);
    context_.channel_type = line.channel_type;
    context_.header = &header;
    context_.payload = octets_of(data);
    context_.original_length = data.empty() ? 0 : load_be16(&record[ORIGINAL_LENGTH]);
    captured_line::port port = captured_line::EVENTS;
    if (make_frame(context_, line.link, frame_)) {
        port = frame_.cell ? captured_line::CELLS : captured_line::FRAMES;
    } else {
        make_event(context_, record, frame_);
    }
    const std::uint32_t id = port_id(line, port);
    ++counts_[id].captured;
    counts_[id].lost += notes.lost;
    latest_ms_ = std::max(latest_ms_, notes.time_ms);
    packets_ = true;
    build_enhanced_packet(block_, {.interface_id = id,
                                   .time_ms = notes.time_ms,
                                   .prefix = frame_.prefix(),
                                   .data = frame_.data,
                                   .original_length = frame_.original_length,
                                   .flags = frame_.flags,
                                   .lost = notes.lost,
                                   .id = frame_.id,
                                   .comment = frame_.comment.text(),
                                   .second_comment = notes.text});
    put_block();
}

void capture_file::put_block() {
    unwritten_.insert(unwritten_.end(), block_.begin(), block_.end());
    if (unwritten_.size() >= BATCH) {
        flush();
    }
}

void capture_file::flush() {
    std::span<const std::uint8_t> rest = unwritten_;
    while (open_ && !rest.empty()) {
        const ssize_t written = write(fifo_, rest.data(), rest.size());
        if (written > 0) {
            rest = rest.subspan(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            open_ = false;
            problem_ = written == 0 || errno != EPIPE ? options_.fifo + ": " + std::strerror(errno) : "";
        }
    }
    unwritten_.clear();
}

void capture_file::finish() {
    for (std::uint32_t id = 0; packets_ && id < counts_.size(); ++id) {
        const packet_counts& counts = counts_[id];
        build_interface_statistics(block_, {.interface_id = id,
                                            .time_ms = latest_ms_,
                                            .received = counts.captured + counts.lost,
                                            .lost = counts.lost});
        put_block();
    }
    flush();
}

}  // namespace ifwatch::extcap
