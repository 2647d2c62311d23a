#pragma once

#include <sys/types.h>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ifwatch::test {

/// A program to run. It gets the environment of the tests without the TRACE_ variables, and `environment` on top.
struct command {
    std::string program;
    std::vector<std::string> arguments = {};
    std::vector<std::pair<std::string, std::string>> environment = {};
    std::string input = {};  // its standard input, closed behind it
    std::chrono::milliseconds timeout = std::chrono::seconds(10);
    int input_fd = -1;   // of the caller, to be its standard input instead
    int output_fd = -1;  // of the caller, to be its standard output: the outcome then has none
    int errors_fd = -1;  // of the caller, to be its error stream: the outcome then has none
};

/// How a program ended and what it wrote.
struct outcome {
    int status = -1;  // exit status; -1: it was ended by a signal, or never started
    int signal = 0;   // the signal that ended it
    bool timed_out = false;
    std::string output;
    std::string errors;
};

/// A program running in the background. It is killed when the object goes.
class process {
public:
    /// Starts the program; `errors` of the outcome tells when it cannot be started.
    explicit process(const command& what);
    ~process();
    process(const process&) = delete;
    process& operator=(const process&) = delete;
    process(process&&) = delete;
    process& operator=(process&&) = delete;

    [[nodiscard]] pid_t id() const { return id_; }

    /// Waits until the standard output, or the error stream, holds the text. False when the program ends or the
    /// time-out passes before.
    bool wait_for_output(const std::string& text);
    bool wait_for_errors(const std::string& text);

    /// What it has written so far.
    [[nodiscard]] std::string output() const;
    [[nodiscard]] std::string errors() const;

    void send_signal(int number) const;

    /// Waits for the end, at most until the time-out counted from here; then the program is killed.
    outcome wait();

    /// Sends the signal to terminate and waits.
    outcome terminate();

private:
    void pump(std::string input);
    void take(int& fd, std::string& text);
    bool wait_for(const std::string& text, const std::string& stream);
    bool reap(std::chrono::steady_clock::time_point until);

    pid_t id_ = -1;
    std::chrono::milliseconds timeout_;
    int input_ = -1;
    int output_fd_ = -1;
    int errors_fd_ = -1;
    int ended_[2] = {-1, -1};  // closed on one side when the program has ended
    bool reaped_ = false;
    outcome result_;
    mutable std::mutex mutex_;  // over the two texts of the result
    std::thread pump_;
};

/// Runs a program to its end.
outcome run(const command& what);

}  // namespace ifwatch::test
