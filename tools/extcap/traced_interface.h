#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "extcap/capture_file.h"
#include "extcap/record_inbox.h"
#include "extcap/retry_pause.h"
#include "extcap/router_clock.h"
#include "extcap/session_setup.h"

namespace ifwatch::extcap {

/// One interface of the router during a capture: the session that it has or will have, and what is remembered from one
/// session to the next.
class traced_interface {
public:
    enum class state : std::uint8_t { SETTING_UP, TRACING, WAITING, OVER };

    explicit traced_interface(std::int32_t index) { line_.index = index; }
    ~traced_interface() { close_socket(); }
    traced_interface(const traced_interface&) = delete;
    traced_interface& operator=(const traced_interface&) = delete;
    traced_interface(traced_interface&&) = delete;
    traced_interface& operator=(traced_interface&&) = delete;

    [[nodiscard]] state now() const { return state_; }
    [[nodiscard]] std::int32_t index() const { return line_.index; }
    [[nodiscard]] captured_line& line() { return line_; }
    [[nodiscard]] record_inbox& inbox() { return inbox_; }
    /// Whether its last session, or the attempt at one, had no end in good order.
    [[nodiscard]] bool failed() const { return failed_; }
    [[nodiscard]] bool ever_traced() const { return ever_traced_; }
    /// What can be waited for: the set-up or the session's socket; -1 for nothing.
    [[nodiscard]] int fd() const;

    /// Begins a session. False with the reason.
    bool begin(router_access& access, std::string& reason);

    /// Takes what came of the set-up. An open session is traced from here on, and `line().channel_type` is its type.
    opened_session take_set_up(std::int64_t steady_ms);

    /// Reads what has arrived. False at the end of the session, with the reason; empty when the router closed in order.
    bool read(std::string& reason);

    /// Notes a record that was just taken from the inbox.
    waiting_record note(std::span<const std::uint8_t> record, router_clock& clock, router_clock::arrival came);

    /// What is to be told of a record whose note has this number, once. Empty for 0.
    [[nodiscard]] std::string take_note(std::uint16_t number);

    /// The session, or the attempt, is over. `failed` when that was no end in good order.
    void end(bool failed);
    /// It is over, but is tried again after a while. `steady_ms` is now, in milliseconds.
    void end_and_wait(const std::string& reason, std::int64_t steady_ms);
    [[nodiscard]] std::int64_t retry_at() const { return retry_at_; }

    /// Lets the session's stream come to its end; what has arrived can still be read.
    void stop();

    /// True the first time.
    bool tell_once();

private:
    void close_socket();
    std::string tell_gap(std::int64_t steady_ms);
    std::uint16_t keep_note(std::string note);

    state state_ = state::OVER;
    captured_line line_;
    session_setup set_up_;
    int socket_fd_ = -1;
    record_inbox inbox_;

    router_clock::follower clock_;
    std::uint32_t sequence_ = 0;      // of the last record
    bool behind_gap_ = false;         // the next record is the first of a further session
    std::vector<std::string> notes_;  // of records that wait, by their number - 1; empty: free

    bool ever_traced_ = false;
    bool failed_ = false;
    bool told_ = false;
    retry_pause pause_;
    bool gave_records_ = false;
    std::int64_t retry_at_ = 0;
    std::int64_t traced_since_ = 0;
    std::int64_t latest_packet_ms_ = 0;  // before there is one, the first session's begin
    std::string gap_reason_;             // why no packet has come since; empty: one may
};

}  // namespace ifwatch::extcap
