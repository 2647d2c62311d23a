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
        ever_traced_ = true;
        gave_records_ = false;
        traced_since_ = steady_ms;
        note_gap(steady_ms);
    }
    return session;
}

void traced_interface::note_gap(std::int64_t steady_ms) {
    if (gap_since_ >= 0) {
        const auto gap = static_cast<std::uint64_t>(steady_ms - gap_since_);
        text_buffer<64> text;
        print_to<"gap of %lu.%03lu s: ">(text, gap / 1000, gap % 1000);
        note_ = std::string(text.text()) + gap_reason_;
        has_new_note_ = true;
        gap_since_ = -1;
    }
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
    if (moment.restarted) {
        note_ += std::string(note_.empty() ? "" : "; ") + "the router's clock began anew";
        has_new_note_ = true;
    }
    const std::uint32_t lost = header.sequence - sequence_ - 1;
    // A sequence may begin anew, too.
    const bool continues = !first && !moment.restarted && static_cast<std::int32_t>(lost) > 0;
    sequence_ = header.sequence;
    return {.order = moment.order, .lost = continues ? lost : 0, .noted = std::exchange(has_new_note_, false)};
}

std::string traced_interface::take_note() { return std::exchange(note_, {}); }

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
    if (ever_traced_ && gap_since_ < 0) {
        gap_since_ = steady_ms;
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
