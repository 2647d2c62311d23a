#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <thread>

namespace ifwatch::test {

/// Interrupts the thread that makes it by signals, each time it waits in a call of the system, and then calls `then`
/// on another thread: `then` ends what is waited for. Going, the object waits for `then`.
class interruption {
public:
    explicit interruption(std::function<void()> then);
    ~interruption();
    interruption(const interruption&) = delete;
    interruption& operator=(const interruption&) = delete;
    interruption(interruption&&) = delete;
    interruption& operator=(interruption&&) = delete;

private:
    void interrupt() const;

    std::function<void()> then_;
    std::string state_file_;  // where the system tells what the thread does
    pthread_t target_;
    struct sigaction former_ {};
    std::thread thread_;
};

}  // namespace ifwatch::test
