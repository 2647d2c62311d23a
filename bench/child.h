#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace ifwatch::bench {

/// The standard streams of a program that is started; -1 stands for /dev/null.
struct streams {
    int input = -1;
    int output = -1;
    int error = -1;
};

/// Starts a program, found as a shell finds it. The process id, or -1 after a message.
[[nodiscard]] pid_t start(const std::vector<std::string>& command, const streams& standard);

struct ended_child {
    int status = -1;               // the exit status; -1: ended by a signal
    double processor_seconds = 0;  // in the program and in the system on its behalf
};

ended_child wait_for(pid_t child);

/// The resident memory in KiB, page by page and not as the system estimates it, of a program once it sleeps; 0 where it
/// cannot be told.
[[nodiscard]] long memory_asleep(pid_t child);

/// The most resident memory in KiB that a running program has had so far; 0 where it cannot be told.
[[nodiscard]] long most_memory(pid_t child);

/// Both ends of a pipe that programs started later do not inherit; closed in the end.
class pipe_pair {
public:
    pipe_pair();
    ~pipe_pair();
    pipe_pair(const pipe_pair&) = delete;
    pipe_pair& operator=(const pipe_pair&) = delete;
    pipe_pair(pipe_pair&&) = delete;
    pipe_pair& operator=(pipe_pair&&) = delete;

    [[nodiscard]] int reading() const { return ends_[0]; }
    [[nodiscard]] int writing() const { return ends_[1]; }
    void close_reading();
    void close_writing();

private:
    int ends_[2] = {-1, -1};
};

/// Reads until the other end is closed; returns how many octets came.
std::size_t drain(int fd);

/// One line without its end; what came until then where the stream ends before.
std::string read_line(int fd);

/// A program that serves: it tells its port in the first line it prints, after the last colon, and is ended with the
/// object.
class server {
public:
    explicit server(const std::vector<std::string>& command);
    ~server();
    server(const server&) = delete;
    server& operator=(const server&) = delete;
    server(server&&) = delete;
    server& operator=(server&&) = delete;

    [[nodiscard]] const std::string& port() const { return port_; }
    /// The next line it prints.
    [[nodiscard]] std::string line() const { return read_line(output_.reading()); }
    /// Lets a server go on that waits for a line.
    void go_on() const;

private:
    pipe_pair input_;
    pipe_pair output_;
    pid_t child_ = -1;
    std::string port_;
};

}  // namespace ifwatch::bench
