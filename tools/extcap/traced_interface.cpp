#include "extcap/traced_interface.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "base/format.h"
#include "trace/record_buffer.h"

namespace ifwatch::extcap {

namespace {

constexpr std::int64_t LASTING = 60'000;  // a session of so many milliseconds was one, even without a record

/// A router that is gone without a word is noticed after two minutes.
void watch_peer(int socket_fd) {
    const int on = 1;
    setsockopt(socket_fd, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
#ifdef TCP_KEEPIDLE
    const int idle = 60;
    const int interval = 15;
    const int count = 4;
    setsockopt(socket_fd, IPPROTO_TCP, TCP_KEEPIDLE, &idle, sizeof idle);
    setsockopt(socket_fd, IPPROTO_TCP, TCP_KEEPINTVL, &interval, sizeof interval);
    setsockopt(socket_fd, IPPROTO_TCP, TCP_KEEPCNT, &count, sizeof count);
#endif
}

}  // namespace

int traced_interface::fd() const {
    return state_ == state::SETTING_UP ? set_up_.fd() : state_ == state::TRACING ? socket_fd_ : -1;
}

bool traced_interface::begin(router_access& access, std::string& reason) {
    state_ = state::SETTING_UP;
    if (set_up_.start(access, line_.index)) {
        return true;
    }
    reason = std::string("no process for its session: ") + std::strerror(errno);
    return false;
}

opened_session traced_interface::take_set_up(std::int64_t steady_ms) {
    opened_session session = set_up_.take();
    if (session.result == set_up::OPEN) {
        state_ = state::TRACING;
        socket_fd_ = session.socket_fd;
        line_.channel_type = session.channel_type;
        watch_peer(socket_fd_);
        inbox_.open();
        behind_gap_ = clock_.started;
        latest_packet_ms_ = ever_traced_ ? latest_packet_ms_ : steady_ms;
        ever_traced_ = true;
        gave_records_ = false;
        traced_since_ = steady_ms;
    }
    return session;
}

/// Tells of a packet that comes now how long there was none, if sessions have ended since the one before.
std::string traced_interface::tell_gap(std::int64_t steady_ms) {
    const auto gap = static_cast<std::uint64_t>(steady_ms - std::exchange(latest_packet_ms_, steady_ms));
    if (gap_reason_.empty()) {
        return {};
    }
    text_buffer<64> text;
    print_to<"gap of %lu.%03lu s: ">(text, gap / 1000, gap % 1000);
    return std::string(text.text()) + std::exchange(gap_reason_, {});
}

bool traced_interface::read(std::string& reason) {
    const std::span<std::uint8_t> room = inbox_.room();
    const ssize_t got = recv(socket_fd_, room.data(), room.size(), MSG_DONTWAIT);
    if (got > 0) {
        inbox_.filled(static_cast<std::size_t>(got));
        gave_records_ = true;
        return true;
    }
    const int error = errno;
    if (got < 0 && (error == EAGAIN || error == EWOULDBLOCK || error == EINTR)) {
        return true;
    }
    const bool in_order = inbox_.tell_end(got < 0 ? -1 : 0) == record_read::END;
    reason = take_reports();
    if (in_order) {
        reason.clear();
    } else if (got < 0) {
        reason += std::string(" (") + std::strerror(error) + ")";
    }
    return false;
}

waiting_record traced_interface::note(std::span<const std::uint8_t> record, router_clock& clock,
                                      router_clock::arrival came) {
    const record_header header = parse_protocol_part(record.subspan<4, PROTO_LENGTH>());
    came.behind_gap = std::exchange(behind_gap_, false);
    const bool first = !clock_.started;
    const router_clock::moment moment = clock.at(clock_, header.timestamp_ms, came);
    std::string note = tell_gap(came.steady_ms);
    if (moment.restarted) {
        note += std::string(note.empty() ? "" : "; ") + "the router's clock began anew";
    }
    const std::uint32_t lost = header.sequence - sequence_ - 1;
    // A sequence may begin anew, too.
    const bool continues = !first && !moment.restarted && static_cast<std::int32_t>(lost) > 0;
    sequence_ = header.sequence;
    const std::uint16_t number = note.empty() ? 0 : keep_note(std::move(note));
    return {.order = moment.order, .lost = continues ? lost : 0, .note = number};
}

std::uint16_t traced_interface::keep_note(std::string note) {
    const auto place = std::ranges::find_if(notes_, &std::string::empty);
    const auto number = static_cast<std::uint16_t>(place - notes_.begin() + 1);
    if (place == notes_.end()) {
        notes_.push_back(std::move(note));
    } else {
        *place = std::move(note);
    }
    return number;
}

std::string traced_interface::take_note(std::uint16_t number) {
    return number != 0 ? std::exchange(notes_[number - 1U], {}) : std::string();
}

void traced_interface::end(bool failed) {
    set_up_.give_up();
    close_socket();
    failed_ = failed;
    state_ = state::OVER;
}

void traced_interface::end_and_wait(const std::string& reason, std::int64_t steady_ms) {
    const bool lasted = state_ == state::TRACING && (gave_records_ || steady_ms - traced_since_ >= LASTING);
    end(true);
    state_ = state::WAITING;
    pause_ = lasted ? retry_pause() : pause_;
    retry_at_ = steady_ms + std::int64_t{1000} * pause_.next_s();
    if (ever_traced_ && gap_reason_.empty()) {
        gap_reason_ = reason;
    }
}

void traced_interface::stop() {
    if (state_ == state::TRACING) {
        shutdown(socket_fd_, SHUT_RDWR);
    } else {
        end(false);
    }
}

bool traced_interface::tell_once() { return !std::exchange(told_, true); }

void traced_interface::close_socket() {
    if (socket_fd_ >= 0) {
        close(socket_fd_);
        socket_fd_ = -1;
    }
}

}  // namespace ifwatch::extcap
