#include "extcap/capture.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <span>

#include "capture/own_capture.h"
#include "capture/pcapng_writer.h"
#include "capture/record_frame.h"
#include "display/display_context.h"
#include "extcap/stop.h"
#include "extcap/time_line.h"
#include "trace/ifc_types.h"
#include "trace/record_buffer.h"
#include "trace/record_stream.h"

namespace ifwatch::extcap {

namespace {

using namespace ifwatch::capture;

constexpr int STATUS_MISTAKE = 2;

/// How a step of a capture went.
enum class step : std::uint8_t { DONE, END, FAILED };

/// The packets of one of the file's interfaces.
struct packet_counts {
    std::uint64_t captured = 0;
    std::uint64_t lost = 0;
};

class capture_run {
public:
    capture_run(const plugin_options& options, int fifo, int socket_fd, display_context& context)
        : options_(options),
          fifo_(fifo),
          socket_fd_(socket_fd),
          context_(context),
          link_(find_link_layer(context.channel_type, options.bchannel->link)) {}

    bool run(failure& why) {
        step last = begin();
        while (last == step::DONE) {
            last = wait_for_record() ? take_record() : step::END;
        }
        why = {1, std::move(problem_)};
        return last == step::END;
    }

private:
    /// Writes the block, or notes the problem. A reader that has gone is the end.
    step write_block() {
        std::span<const std::uint8_t> rest = block_;
        while (!rest.empty()) {
            const ssize_t written = write(fifo_, rest.data(), rest.size());
            if (written > 0) {
                rest = rest.subspan(static_cast<std::size_t>(written));
            } else if (written < 0 && errno == EPIPE) {
                return step::END;
            } else if (written == 0 || errno != EINTR) {
                return fail(options_.fifo + ": " + std::strerror(errno));
            }
        }
        return step::DONE;
    }

    step fail(std::string problem) {
        problem_ = std::move(problem);
        return step::FAILED;
    }

    step begin() {
        if (!allocate(records_)) {
            return fail(take_reports());
        }
        build_section_header(block_, "ifwatch-extcap " EXTCAP_VERSION);
        const step first = write_block();
        return first == step::DONE ? describe(link_, "") : first;
    }

    /// Writes an interface's description.
    step describe(const link_layer& link, const std::string& suffix) {
        const std::string index = std::to_string(options_.interface_index.value_or(0));
        const auto length = static_cast<std::uint32_t>(options_.capture_length);
        build_interface_description(block_, {.link_type = link.type,
                                             .snapshot_length = length != 0 ? length + prefix_length(link) : 0,
                                             .name = "ifwatch-" + index + suffix,
                                             .description = "Interface " + index + " of " + options_.host + ": " +
                                                            ifc_type_entry(context_.channel_type).name + suffix,
                                             .filter = options_.filter,
                                             .comment = interface_type_comment(context_.channel_type)});
        return write_block();
    }

    /// False when the reader of the FIFO has gone.
    [[nodiscard]] bool wait_for_record() const {
        pollfd waiting[] = {{socket_fd_, POLLIN, 0}, {fifo_, 0, 0}};
        while (poll(waiting, 2, -1) < 0 && errno == EINTR) {
        }
        return (waiting[1].revents & POLLERR) == 0;
    }

    step take_record() {
        const record_read got = receive_record(socket_fd_, records_, context_);
        if (got == record_read::RECORD) {
            return write_record();
        }
        if (got == record_read::BROKEN && !stop_asked()) {
            return fail("router " + options_.host + ": the trace broke off: " + take_reports());
        }
        return write_statistics();
    }

    /// Notes what a gap in the sequence of the records tells of lost ones.
    void follow_sequence() {
        const std::uint32_t sequence = context_.header->sequence;
        const std::uint32_t lost = times_.started() ? sequence - previous_sequence_ - 1 : 0;
        const bool forward = static_cast<std::int32_t>(lost) > 0;  // a sequence may begin anew
        lost_before_ += forward ? lost : 0;
        previous_sequence_ = sequence;
    }

    step write_record() {
        follow_sequence();
        const std::uint64_t time = times_.at(context_.header->timestamp_ms, first_time());
        if (!make_frame(context_, link_, frame_)) {
            return step::DONE;
        }
        const std::uint32_t interface_id = frame_.cell ? 1 : 0;
        packet_counts& counts = counts_[interface_id];
        ++counts.captured;
        counts.lost += lost_before_;
        if (frame_.cell && !cells_described_) {
            cells_described_ = true;
            if (const step described = describe(cell_link_layer(), " cells"); described != step::DONE) {
                return described;
            }
        }
        build_enhanced_packet(block_, {.interface_id = interface_id,
                                       .time_ms = time,
                                       .prefix = frame_.prefix(),
                                       .data = frame_.data,
                                       .original_length = frame_.original_length,
                                       .flags = frame_.flags,
                                       .lost = lost_before_,
                                       .id = frame_.id,
                                       .comment = frame_.comment.text()});
        lost_before_ = 0;
        return write_block();
    }

    [[nodiscard]] std::int64_t first_time() const {
        using namespace std::chrono;
        if (options_.router_time || times_.started()) {
            return -1;
        }
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }

    /// Writes what each interface gave. What was lost behind the last packet counts as the first one's.
    step write_statistics() {
        if (!times_.started()) {
            return step::END;
        }
        counts_[0].lost += lost_before_;
        const std::uint32_t interfaces = cells_described_ ? 2 : 1;
        for (std::uint32_t id = 0; id < interfaces; ++id) {
            const packet_counts& counts = counts_[id];
            build_interface_statistics(block_, {.interface_id = id,
                                                .time_ms = times_.latest(),
                                                .received = counts.captured + counts.lost,
                                                .lost = counts.lost});
            if (const step written = write_block(); written != step::DONE) {
                return written;
            }
        }
        return step::END;
    }

    const plugin_options& options_;
    int fifo_;
    int socket_fd_;
    display_context& context_;
    link_layer link_;
    record_buffer records_;
    block_buffer block_;
    link_frame frame_;
    time_line times_;
    bool cells_described_ = false;
    std::uint32_t previous_sequence_ = 0;
    std::array<packet_counts, 2> counts_{};  // of the interface and of its cells
    std::uint64_t lost_before_ = 0;          // since the last packet
    std::string problem_;
};

}  // namespace

bool capture(const plugin_options& options, const std::string& mistake, failure& why) {
    end_on_signals();
    // Open until the process ends: its reader takes that for the end of the capture, and asks for no error after it.
    const int fifo = open(options.fifo.c_str(), O_WRONLY | O_CLOEXEC);
    if (fifo < 0) {
        why = {1, options.fifo + ": " + std::strerror(errno)};
        return false;
    }
    if (!mistake.empty()) {
        why = {STATUS_MISTAKE, mistake};
        return false;
    }
    display_context context;
    init_display_context(context);
    const int socket_fd = open_trace(options, context, why);
    if (socket_fd < 0) {
        return false;
    }
    end_stream_on_signals(socket_fd);
    return capture_run(options, fifo, socket_fd, context).run(why);
}

}  // namespace ifwatch::extcap
