#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <vector>

#include "cases/case_file.h"
#include "sim/peer.h"
#include "sim/setup.h"

namespace ifwatch::sim {

/// What the sessions of a daemon share: how many trace at a time, and the start of those that wait for each other.
class trace_room {
public:
    trace_room(const daemon_setup& setup, const std::vector<cases::trace_case>& cases);

    /// Whether another trace has a place. One that was given is given back with leave(), also where there was none.
    bool enter() { return ++tracing_ <= setup_.limit || setup_.limit == 0; }
    void leave() { --tracing_; }

    /// Waits until as many traces have begun as begin together. False when the client has gone or the daemon is to end.
    bool begin(const peer& client);

    /// When the clock stood at origin_ms(), for traces that begin together.
    [[nodiscard]] peer::time_point start() const { return peer::time_point(peer::time_point::duration(start_)); }
    /// The time stamp of the earliest record of all cases.
    [[nodiscard]] std::uint32_t origin_ms() const { return origin_ms_; }

private:
    const daemon_setup& setup_;
    std::uint32_t origin_ms_ = 0;
    std::atomic<std::uint64_t> tracing_ = 0;
    std::atomic<std::uint64_t> begun_ = 0;
    std::atomic<peer::time_point::rep> start_ = 0;
};

/// One place in the room.
class trace_place {
public:
    explicit trace_place(trace_room& room) : room_(room), taken_(room.enter()) {}
    ~trace_place() { room_.leave(); }
    trace_place(const trace_place&) = delete;
    trace_place& operator=(const trace_place&) = delete;
    trace_place(trace_place&&) = delete;
    trace_place& operator=(trace_place&&) = delete;

    [[nodiscard]] bool taken() const { return taken_; }

private:
    trace_room& room_;
    bool taken_;
};

}  // namespace ifwatch::sim
