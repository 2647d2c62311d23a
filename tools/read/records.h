#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "capture/byte_stream.h"
#include "capture/capture_reader.h"
#include "capture/packet_record.h"
#include "read/lines.h"
#include "read/options.h"
#include "read/shown_counts.h"

namespace ifwatch::read {

/// The packets of a capture as records, each in the context of the line that it came from.
class capture_records {
public:
    /// `before_read` is called each time before the descriptor is read, as byte_stream has it. `counts` gets every
    /// packet that is passed over.
    capture_records(int fd, bool (*before_read)(), const read_options& options, shown_counts& counts);

    /// Makes the next packet that can be shown the current record of its line's context, until the next call. nullptr
    /// at the end of the capture.
    traced_line* next();

    /// What is wrong, and where, when the end was none; empty otherwise.
    [[nodiscard]] std::string error() const { return last_ == capture::packet_read::DAMAGED ? reader_.error() : ""; }

    [[nodiscard]] const capture::captured_packet& packet() const { return packet_; }
    [[nodiscard]] const capture::record_clock& clock() const { return clock_; }
    /// Whether an address should have told the direction of the line's current record, but is not in such frames.
    [[nodiscard]] bool lacks_address(const traced_line& line) const {
        return record_.sent_by_rule && !rule_applies(options_.sent, line.context.channel_type);
    }
    /// Whether packets may come from more than one line, as far as the capture has told.
    [[nodiscard]] bool has_several_lines() const { return lines_.has_several_lines(packet_, reader_); }
    [[nodiscard]] std::uint64_t octets_read() const { return stream_.offset(); }

private:
    void make_current(traced_line& line);

    const read_options& options_;
    shown_counts& counts_;
    capture::byte_stream stream_;
    capture::capture_reader reader_{stream_};
    line_table lines_;
    capture::record_clock clock_;
    capture::captured_packet packet_;
    capture::packet_read last_ = capture::packet_read::PACKET;
    capture::packet_record record_;
    std::unique_ptr<std::array<std::uint8_t, RECORD_DATA_MAXIMUM>> data_;
};

}  // namespace ifwatch::read
