#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>

#include "extcap/router.h"

namespace ifwatch::extcap {

/// A session that is being set up by a process of its own, so that a router that takes its time, or hangs in the login,
/// holds up nobody. The connected socket, or what the router lists, comes back from there.
class session_setup {
public:
    static constexpr unsigned PATIENCE = 60;  // seconds for one set-up

    session_setup() = default;
    ~session_setup() { give_up(); }
    session_setup(const session_setup&) = delete;
    session_setup& operator=(const session_setup&) = delete;
    session_setup(session_setup&&) = delete;
    session_setup& operator=(session_setup&&) = delete;

    /// Begins: with the trace of an interface or, without an index, the question for the list. False (errno set) where
    /// the system has no process or no descriptors for it.
    bool start(router_access& access, std::optional<std::int32_t> index, unsigned patience = PATIENCE);

    /// Readable when the outcome is there; -1 while nothing is being set up.
    [[nodiscard]] int fd() const { return fd_; }

    /// Takes the outcome, which it waits for.
    opened_session take();

    /// Ends the set-up.
    void give_up();

private:
    void end_process();

    int fd_ = -1;
    pid_t process_ = -1;
    unsigned patience_ = PATIENCE;
};

}  // namespace ifwatch::extcap
