#include "read/records.h"

#include <utility>

#include "base/verbose.h"
#include "read/output.h"

namespace ifwatch::read {

namespace {

/// Gives the record its place in the sequence of its line, so that what was lost before it shows as a gap there.
void number_record(traced_line& line, std::uint32_t lost, capture::packet_record& record) {
    std::uint32_t& sequence = record.header.sequence;
    std::uint32_t& shown_last = line.context.expected_sequence;
    if (!record.own_sequence) {
        if (lost != 0 && line.sequence == 0) {
            ++line.sequence;  // a gap behind number 0 would not show
        }
        shown_last = line.sequence;
        sequence = line.sequence + lost + 1;
    } else if (line.begun && static_cast<std::int32_t>(sequence - shown_last) > 0) {
        // A gap may also be what the capture has no packets for; only what was lost is told.
        shown_last = sequence - lost - 1;
    }
    line.sequence = sequence;
    line.begun = true;
}

}  // namespace

capture_records::capture_records(int fd, bool (*before_read)(), const read_options& options, shown_counts& counts)
    : options_(options),
      counts_(counts),
      stream_(fd, before_read),
      lines_(options.decoders, options.channel_type),
      data_(std::make_unique<std::array<std::uint8_t, RECORD_DATA_MAXIMUM>>()) {}

traced_line* capture_records::next() {
    while ((last_ = reader_.next(packet_)) == capture::packet_read::PACKET) {
        known_interface& from = lines_.interface_of(packet_, reader_);
        if (!from.source) {
            counts_.add_undecoded(from.link_type);
            continue;
        }
        from.lost = capture::told_loss(std::uint64_t{from.lost} + capture::told_loss(packet_.lost));
        if (!make_packet_record(packet_, *from.source, options_.sent, clock_, *data_, record_)) {
            counts_.add_too_short();
            if (verbose_level > 0) {
                say(capture::short_packet_text(packet_, from.link_type));
            }
            continue;
        }
        traced_line& line = lines_.line_of(from, packet_, reader_);
        line.context.zero_is_time = line.begun && clock_.first_ns.has_value();
        number_record(line, std::exchange(from.lost, 0), record_);
        make_current(line);
        return &line;
    }
    return nullptr;
}

void capture_records::make_current(traced_line& line) {
    line.context.header = &record_.header;
    line.context.original_length = record_.octets.empty() ? 0 : record_.original_length;
    line.context.payload = octets_of(record_.octets);
}

}  // namespace ifwatch::read
