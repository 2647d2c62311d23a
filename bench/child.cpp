#include "child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string_view>
#include <thread>

namespace ifwatch::bench {

namespace {

void direct(posix_spawn_file_actions_t& actions, int fd, int target, int flags) {
    if (fd >= 0) {
        posix_spawn_file_actions_adddup2(&actions, fd, target);
    } else {
        posix_spawn_file_actions_addopen(&actions, target, "/dev/null", flags, 0);
    }
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// What the child's file of the system says behind the name, in KiB; 0 where it cannot be told.
long kibibytes_of(pid_t child, const char* name, std::string_view label) {
    std::ifstream file("/proc/" + std::to_string(child) + "/" + name);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(label)) {
            return std::strtol(line.c_str() + label.size(), nullptr, 10);
        }
    }
    return 0;
}

bool sleeps(pid_t child) {
    std::ifstream file("/proc/" + std::to_string(child) + "/stat");
    std::string words;
    std::getline(file, words);
    return words.find(") S ") != std::string::npos;
}

void close_end(int& fd) {
    if (fd >= 0) {
        close(fd);
        fd = -1;
    }
}

}  // namespace

pid_t start(const std::vector<std::string>& command, const streams& standard) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));  // what posix_spawn asks for
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    direct(actions, standard.input, STDIN_FILENO, O_RDONLY);
    direct(actions, standard.output, STDOUT_FILENO, O_WRONLY);
    direct(actions, standard.error, STDERR_FILENO, O_WRONLY);
    pid_t child = -1;
    const int failed = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) {
        static_cast<void>(std::fprintf(stderr, "cannot start %s: %s\n", arguments[0], std::strerror(failed)));
        return -1;
    }
    return child;
}

ended_child wait_for(pid_t child) {
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            return {};
        }
    }
    return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            .processor_seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

pipe_pair::pipe_pair() {
    if (pipe2(ends_, O_CLOEXEC) != 0) {
        std::perror("pipe");
    }
}

pipe_pair::~pipe_pair() {
    close_reading();
    close_writing();
}

void pipe_pair::close_reading() { close_end(ends_[0]); }
void pipe_pair::close_writing() { close_end(ends_[1]); }

long memory_asleep(pid_t child) {
    while (!sleeps(child)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return kibibytes_of(child, "smaps_rollup", "Rss:");  // page by page, not as the system estimates it
}

// Not what wait4 tells, which is at least what the process had that started the child.
long most_memory(pid_t child) { return kibibytes_of(child, "status", "VmHWM:"); }

std::size_t drain(int fd) {
    std::vector<char> buffer(1 << 17);
    std::size_t all = 0;
    for (;;) {
        const ssize_t count = read(fd, buffer.data(), buffer.size());
        if (count <= 0) {
            return all;
        }
        all += static_cast<std::size_t>(count);
    }
}

std::string read_line(int fd) {
    std::string line;
    char character = '\0';
    while (read(fd, &character, 1) == 1 && character != '\n') {
        line += character;
    }
    return line;
}

server::server(const std::vector<std::string>& command) {
    child_ = start(command, {.input = input_.reading(), .output = output_.writing(), .error = STDERR_FILENO});
    output_.close_writing();
    const std::string first = line();
    port_ = first.substr(first.rfind(':') + 1);
}

server::~server() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        wait_for(child_);
    }
}

void server::go_on() const {
    if (write(input_.writing(), "\n", 1) != 1) {
        std::perror("server");
    }
}

}  // namespace ifwatch::bench
