#include "extcap/capture.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

#include "extcap/capture_file.h"
#include "extcap/find_interfaces.h"
#include "extcap/stop.h"
#include "extcap/time_order.h"
#include "extcap/traced_interface.h"

namespace ifwatch::extcap {

namespace {

using state = traced_interface::state;

constexpr int STATUS_MISTAKE = 2;
constexpr std::size_t COMMON_ROOM = std::size_t{512} << 10;  // of several inboxes, beyond that of each
constexpr int WRITTEN_AT_ONCE = 64;                          // records, to make room

template <class Clock>
std::int64_t milliseconds_of() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

router_clock::arrival arrival_now() {
    return {milliseconds_of<std::chrono::system_clock>(), milliseconds_of<std::chrono::steady_clock>(), false};
}

class capture_run {
public:
    capture_run(const plugin_options& options, router_access& access, capture_file& file, const problem_teller& tell)
        : options_(options), access_(access), file_(file), tell_(tell), clock_(options.router_time) {}

    /// Traces the interfaces until the capture is over. False when every one of them has failed.
    bool run(const std::vector<std::int32_t>& indexes, int stop_fd);

private:
    void wait(int stop_fd);
    void serve_all();
    [[nodiscard]] int time_to_wait();
    void begin(traced_interface& which);
    void serve(traced_interface& which);
    void finish_set_up(traced_interface& which);
    void make_room(record_inbox& inbox);
    void read(traced_interface& which);
    bool take_records(traced_interface& which);
    void lose(traced_interface& which, const std::string& reason, bool again);
    void write_next();
    void write_overdue();
    void write(traced_interface& from, std::span<std::uint8_t> record, const waiting_record& noted);
    void stop();

    [[nodiscard]] bool going() const {
        return std::ranges::any_of(interfaces_, [](const auto& one) { return one->now() != state::OVER; });
    }

    const plugin_options& options_;
    router_access& access_;
    capture_file& file_;
    const problem_teller& tell_;
    router_clock clock_;
    time_order order_;
    std::vector<std::unique_ptr<traced_interface>> interfaces_;
    std::vector<pollfd> watched_;
    router_clock::arrival now_;
    bool stopping_ = false;
};

bool capture_run::run(const std::vector<std::int32_t>& indexes, int stop_fd) {
    for (const std::int32_t index : indexes) {
        interfaces_.push_back(std::make_unique<traced_interface>(index));
        interfaces_.back()->inbox().belong_to(interfaces_.size() - 1);
        interfaces_.back()->inbox().hold(record_inbox::CAPACITY +
                                         (indexes.size() > 1 ? COMMON_ROOM / indexes.size() : 0));
    }
    now_ = arrival_now();
    for (const auto& which : interfaces_) {
        begin(*which);
    }
    while (file_.open() && going()) {
        wait(stop_fd);
    }
    while (!order_.empty()) {
        write_next();
    }
    file_.finish();
    const bool failed = std::ranges::all_of(interfaces_, [](const auto& one) { return one->failed(); });
    return stopping_ || !file_.open() || !failed;
}

/// Waits for something to happen, and serves it.
void capture_run::wait(int stop_fd) {
    watched_.clear();
    watched_.push_back({file_.fd(), 0, 0});  // an error: its reader has gone
    watched_.push_back({stop_fd, POLLIN, 0});
    for (const auto& which : interfaces_) {
        watched_.push_back({which->fd(), POLLIN, 0});
    }
    const int ready = poll(watched_.data(), watched_.size(), time_to_wait());
    now_ = arrival_now();
    write_overdue();
    if (ready > 0 && (watched_[0].revents & POLLERR) != 0) {
        file_.close();
    }
    if (ready > 0 && watched_[1].revents != 0 && !stopping_) {
        stop();
    }
    if (ready > 0) {
        serve_all();
    }
    for (const auto& which : interfaces_) {
        if (which->now() == state::WAITING && which->retry_at() <= now_.steady_ms) {
            begin(*which);
        }
    }
    file_.flush();
}

/// Those that need room only come last: what they have is written before its time, and what the others have just got
/// may be from before it.
void capture_run::serve_all() {
    for (const bool without_room : {false, true}) {
        for (std::size_t i = 0; i < interfaces_.size() && file_.open(); ++i) {
            traced_interface& which = *interfaces_[i];
            pollfd& watched = watched_[i + 2];
            const bool due = watched.revents != 0 && which.fd() == watched.fd;
            if (due && (without_room || which.inbox().has_room())) {
                watched.revents = 0;
                serve(which);
            }
        }
    }
}

int capture_run::time_to_wait() {
    const std::int64_t now = milliseconds_of<std::chrono::steady_clock>();
    std::int64_t shortest = order_.until_due(now);
    for (const auto& which : interfaces_) {
        if (which->now() == state::WAITING) {
            const std::int64_t left = std::max<std::int64_t>(which->retry_at() - now, 0);
            shortest = shortest < 0 ? left : std::min(shortest, left);
        }
    }
    return static_cast<int>(shortest);
}

void capture_run::begin(traced_interface& which) {
    std::string reason;
    if (!which.begin(access_, reason)) {
        lose(which, reason, true);
    }
}

void capture_run::serve(traced_interface& which) {
    if (which.now() == state::SETTING_UP) {
        finish_set_up(which);
    } else {
        read(which);
    }
}

void capture_run::finish_set_up(traced_interface& which) {
    const std::int32_t type_before = which.line().channel_type;
    const bool described = which.ever_traced();
    while (!which.inbox().empty()) {  // of the session before
        write_next();
    }
    const opened_session session = which.take_set_up(now_.steady_ms);
    if (session.result != set_up::OPEN) {
        lose(which, session.reason, session.result == set_up::UNREACHABLE || described);
    } else if (!described || session.channel_type != type_before) {
        file_.describe(which.line());
    }
    const bool more = std::ranges::any_of(interfaces_, [](const auto& one) { return one->now() == state::SETTING_UP; });
    if (!more && !options_.reconnect) {
        access_.forget_password();
    }
}

/// Writes of what waits before its time.
void capture_run::make_room(record_inbox& inbox) {
    while (!inbox.empty() && !inbox.has_ample_room()) {
        for (int i = 0; i < WRITTEN_AT_ONCE && !order_.empty(); ++i) {
            write_next();
        }
    }
}

void capture_run::read(traced_interface& which) {
    if (!which.inbox().has_room()) {
        make_room(which.inbox());
    }
    std::string reason;
    const bool open = which.read(reason);
    if (open && take_records(which)) {
        return;
    }
    if (open) {
        reason = take_reports();
    }
    const bool in_order = reason.empty();
    if (stopping_ || (in_order && !options_.reconnect)) {
        which.end(false);
    } else {
        lose(which, in_order ? "the router closed the session" : "the trace broke off: " + reason, true);
    }
}

/// False at a record that is none.
bool capture_run::take_records(traced_interface& which) {
    const bool alone = interfaces_.size() == 1;
    record_inbox& inbox = which.inbox();
    std::span<std::uint8_t> record;
    record_inbox::found got = record_inbox::found::RECORD;
    while (file_.open() && (got = inbox.next(record)) == record_inbox::found::RECORD) {
        const waiting_record noted = which.note(record, clock_, now_);
        if (alone) {
            write(which, record, noted);
            continue;
        }
        while (inbox.full()) {
            make_room(inbox);
        }
        order_.add(inbox, noted, now_.steady_ms);
    }
    return got != record_inbox::found::BROKEN;
}

/// Tells why an interface has no session, and lets it be tried again if that is wanted, which is told but once.
void capture_run::lose(traced_interface& which, const std::string& reason, bool again) {
    again = again && options_.reconnect;
    if (!again || which.tell_once()) {
        const std::string number = interfaces_.size() > 1 ? ", interface " + std::to_string(which.index()) : "";
        tell_("router " + options_.host + number + ": " + reason + (again ? "; trying again" : ""));
    }
    if (again) {
        which.end_and_wait(reason, now_.steady_ms);
    } else {
        which.end(true);
    }
}

void capture_run::write_next() {
    record_inbox& inbox = order_.next();
    traced_interface& from = *interfaces_[inbox.owner()];
    write(from, inbox.first_octets(), inbox.first());
    order_.drop_next();
}

void capture_run::write_overdue() {
    while (order_.overdue(now_.steady_ms)) {
        write_next();
    }
}

void capture_run::write(traced_interface& from, std::span<std::uint8_t> record, const waiting_record& noted) {
    const std::string note = from.take_note(noted.note);
    file_.put_record(from.line(), record, {.time_ms = clock_.time_of(noted.order), .lost = noted.lost, .text = note});
}

void capture_run::stop() {
    stopping_ = true;
    for (const auto& which : interfaces_) {
        which->stop();
    }
}

bool capture_interfaces(const plugin_options& options, int fifo, const problem_teller& tell, failure& why) {
    router_access access(options);
    if (!access.prepare(why)) {
        return false;
    }
    why = {};
    const int stop_fd = tell_signals();
    if (stop_fd < 0) {
        why.text = std::string("signals: ") + std::strerror(errno);
        return false;
    }
    std::vector<std::int32_t> indexes;
    std::string reason;
    if (!find_interfaces(options, access, {fifo, stop_fd}, tell, indexes, reason)) {
        why.text = reason.empty() ? "" : "router " + options.host + ": " + reason;
        return reason.empty();
    }
    capture_file file(options, fifo);
    const bool done = capture_run(options, access, file, tell).run(indexes, stop_fd);
    why.text = file.problem();
    return done && why.text.empty();
}

}  // namespace

bool capture(const plugin_options& options, const std::string& mistake, const problem_teller& tell, failure& why) {
    end_on_signals();
    // Open until the process ends: its reader takes that for the end of the capture, and asks for no error after it.
    const int fifo = ::open(options.fifo.c_str(), O_WRONLY | O_CLOEXEC);
    if (fifo < 0) {
        why = {1, options.fifo + ": " + std::strerror(errno)};
        return false;
    }
    if (!mistake.empty()) {
        why = {STATUS_MISTAKE, mistake};
        return false;
    }
    return capture_interfaces(options, fifo, tell, why);
}

}  // namespace ifwatch::extcap
