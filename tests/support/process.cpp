#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

namespace ifwatch::test {

namespace {

using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;

std::vector<std::string> environment_for(const command& what) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        if (!text.starts_with("TRACE_")) {
            result.emplace_back(text);
        }
    }
    for (const auto& variable : what.environment) {
        const std::string assignment = variable.first + "=";
        std::erase_if(result, [&assignment](const std::string& entry) { return entry.starts_with(assignment); });
        result.push_back(assignment + variable.second);
    }
    return result;
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

/// Starts the program with its three streams on these descriptors. Returns 0 or an error number.
int spawn(const command& what, const int (&streams)[3], pid_t& id) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int i = 0; i < 3; ++i) {
        posix_spawn_file_actions_adddup2(&actions, streams[i], i);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> arguments = {what.program};
    arguments.insert(arguments.end(), what.arguments.begin(), what.arguments.end());
    std::vector<std::string> environment = environment_for(what);
    const int problem = posix_spawnp(&id, what.program.c_str(), &actions, &attributes, pointers_to(arguments).data(),
                                     pointers_to(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return problem;
}

void close_if_open(int& fd) {
    if (fd >= 0) {
        close(fd);
    }
    fd = -1;
}

/// A program that has gone must not end the tests by the broken-pipe signal.
void block_broken_pipe() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

process::process(const command& what) : timeout_(what.timeout) {
    int input[2];
    int output[2];
    int errors[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0 || pipe2(errors, O_CLOEXEC) != 0 ||
        pipe2(ended_, O_CLOEXEC) != 0) {
        result_.errors = std::strerror(errno);
        reaped_ = true;
        return;
    }
    const int standard_input = what.input_fd >= 0 ? what.input_fd : input[0];
    const int standard_output = what.output_fd >= 0 ? what.output_fd : output[1];
    const int standard_errors = what.errors_fd >= 0 ? what.errors_fd : errors[1];
    const int problem = spawn(what, {standard_input, standard_output, standard_errors}, id_);
    close(input[0]);
    close(output[1]);
    close(errors[1]);
    input_ = input[1];
    output_fd_ = output[0];
    errors_fd_ = errors[0];
    if (problem != 0) {
        result_.errors = what.program + ": " + std::strerror(problem);
        id_ = -1;
        reaped_ = true;
        return;
    }
    pump_ = std::thread([this, text = what.input] { pump(text); });
}

process::~process() {
    if (!reaped_) {
        send_signal(SIGKILL);
        reap(clock::now() + 10s);
    }
    close_if_open(ended_[1]);
    if (pump_.joinable()) {
        pump_.join();
    }
    close_if_open(ended_[0]);
    close_if_open(input_);
    close_if_open(output_fd_);
    close_if_open(errors_fd_);
}

/// Moves the three streams until the program has closed its two, or has ended and nothing is left in them (what it
/// started may hold them open).
void process::pump(std::string input) {
    block_broken_pipe();
    fcntl(input_, F_SETFL, O_NONBLOCK);
    bool ended = false;
    while (output_fd_ >= 0 || errors_fd_ >= 0) {
        if (input.empty()) {
            close_if_open(input_);
        }
        pollfd watched[] = {{output_fd_, POLLIN, 0},
                            {errors_fd_, POLLIN, 0},
                            {input_, POLLOUT, 0},
                            {ended ? -1 : ended_[0], POLLIN, 0}};
        const int ready = poll(watched, 4, ended ? 0 : -1);
        if (ready <= 0 && ended) {
            return;
        }
        if (watched[0].revents != 0) {
            take(output_fd_, result_.output);
        }
        if (watched[1].revents != 0) {
            take(errors_fd_, result_.errors);
        }
        if (watched[2].revents != 0) {
            const ssize_t count = write(input_, input.data(), input.size());
            input.erase(0, count > 0 ? static_cast<std::size_t>(count) : input.size());
        }
        ended = ended || watched[3].revents != 0;
    }
}

void process::take(int& fd, std::string& text) {
    char buffer[4096];
    const ssize_t count = read(fd, buffer, sizeof buffer);
    if (count <= 0) {
        close_if_open(fd);
        return;
    }
    const std::lock_guard lock(mutex_);
    text.append(buffer, static_cast<std::size_t>(count));
}

bool process::wait_for(const std::string& text, const std::string& stream) {
    const auto until = clock::now() + timeout_;
    while (true) {
        const bool over = reaped_ || reap(clock::now()) || clock::now() >= until;
        if (over && pump_.joinable() && reaped_) {
            close_if_open(ended_[1]);
            pump_.join();
        }
        {
            const std::lock_guard lock(mutex_);
            if (stream.find(text) != std::string::npos) {
                return true;
            }
        }
        if (over) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
}

bool process::wait_for_output(const std::string& text) { return wait_for(text, result_.output); }
bool process::wait_for_errors(const std::string& text) { return wait_for(text, result_.errors); }

std::string process::output() const {
    const std::lock_guard lock(mutex_);
    return result_.output;
}

std::string process::errors() const {
    const std::lock_guard lock(mutex_);
    return result_.errors;
}

void process::send_signal(int number) const {
    if (id_ > 0 && !reaped_) {
        kill(id_, number);
    }
}

bool process::reap(clock::time_point until) {
    while (!reaped_) {
        int state = 0;
        if (waitpid(id_, &state, WNOHANG) != 0) {
            reaped_ = true;
            result_.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
            result_.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
        } else if (clock::now() >= until) {
            return false;
        } else {
            std::this_thread::sleep_for(1ms);
        }
    }
    return true;
}

outcome process::wait() {
    if (!reap(clock::now() + timeout_)) {
        send_signal(SIGKILL);
        reap(clock::now() + 10s);
        result_.timed_out = true;
    }
    close_if_open(ended_[1]);
    if (pump_.joinable()) {
        pump_.join();
    }
    return result_;
}

outcome process::terminate() {
    send_signal(SIGTERM);
    return wait();
}

outcome run(const command& what) { return process(what).wait(); }

}  // namespace ifwatch::test
