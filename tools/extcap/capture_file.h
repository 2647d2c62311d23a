#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture/link_types.h"
#include "capture/pcapng_writer.h"
#include "capture/record_frame.h"
#include "display/display_context.h"
#include "extcap/options.h"

namespace ifwatch::extcap {

/// A traced interface in the file, where it is one for its frames and, once they come, one for cells without user data
/// and one for records without a frame.
struct captured_line {
    enum port : std::uint8_t { FRAMES, CELLS, EVENTS, PORTS };

    std::int32_t index = 0;
    std::int32_t channel_type = 0;
    capture::link_layer link;
    std::array<std::optional<std::uint32_t>, PORTS> ids{};  // nothing: not described yet
};

/// What is told of a record beside it.
struct record_notes {
    std::uint64_t time_ms = 0;
    std::uint32_t lost = 0;  // records between the one before of its interface and this
    std::string_view text;   // a further comment
};

/// The pcapng file that a capture writes into a FIFO. Once its reader has gone or a write has failed, nothing more is
/// written.
class capture_file {
public:
    capture_file(const plugin_options& options, int fifo);

    [[nodiscard]] int fd() const { return fifo_; }
    [[nodiscard]] bool open() const { return open_; }
    /// Writes nothing more.
    void close() { open_ = false; }
    /// Why a write has failed; empty when it was the reader who has gone.
    [[nodiscard]] const std::string& problem() const { return problem_; }

    /// Describes the interface for frames: `index` and `channel_type` are set.
    void describe(captured_line& line);

    /// Puts a record, from its header on. It leaves with flush() at the latest.
    void put_record(captured_line& line, std::span<std::uint8_t> record, const record_notes& notes);
    void flush();

    /// Puts what each interface gave, and flushes.
    void finish();

private:
    struct packet_counts {
        std::uint64_t captured = 0;
        std::uint64_t lost = 0;
    };

    std::uint32_t port_id(captured_line& line, captured_line::port port);
    void describe_port(captured_line& line, captured_line::port port);
    void put_block();

    const plugin_options& options_;
    int fifo_;
    bool open_ = true;
    std::string problem_;
    capture::block_buffer block_;
    capture::block_buffer unwritten_;
    capture::link_frame frame_;
    display_context context_;  // of the record being written
    std::vector<packet_counts> counts_;
    std::uint64_t latest_ms_ = 0;
    bool begun_ = false;    // the section has its header
    bool packets_ = false;  // there is one
};

}  // namespace ifwatch::extcap
