#include "extcap/session_setup.h"

#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <span>
#include <vector>

namespace ifwatch::extcap {

namespace {

constexpr std::size_t LONGEST_REASON = 1024;

constexpr std::size_t PORTION = 1024;  // interfaces of a list in one message

/// What the process sends, with the socket beside it. A list follows in messages of its own.
struct outcome_message {
    set_up result = set_up::UNREACHABLE;
    std::int16_t channel_type = 0;
    std::uint32_t listed = 0;
    std::uint16_t reason_length = 0;
    std::array<char, LONGEST_REASON> reason{};
};

/// Room for one descriptor beside a message.
struct descriptor_room {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> octets{};
};

msghdr message_of(iovec& body, descriptor_room& room) {
    msghdr message{};
    message.msg_iov = &body;
    message.msg_iovlen = 1;
    message.msg_control = room.octets.data();
    message.msg_controllen = room.octets.size();
    return message;
}

void send_outcome(int fd, const opened_session& session) {
    outcome_message outcome{.result = session.result,
                            .channel_type = session.channel_type,
                            .listed = static_cast<std::uint32_t>(session.listed.size())};
    outcome.reason_length = static_cast<std::uint16_t>(std::min(session.reason.size(), LONGEST_REASON));
    std::copy_n(session.reason.begin(), outcome.reason_length, outcome.reason.begin());
    iovec body{&outcome, sizeof outcome};
    descriptor_room room;
    msghdr message = message_of(body, room);
    if (session.socket_fd >= 0) {
        cmsghdr* const beside = CMSG_FIRSTHDR(&message);
        beside->cmsg_level = SOL_SOCKET;
        beside->cmsg_type = SCM_RIGHTS;
        beside->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(beside), &session.socket_fd, sizeof(int));
    } else {
        message.msg_control = nullptr;
        message.msg_controllen = 0;
    }
    while (sendmsg(fd, &message, MSG_NOSIGNAL) < 0 && errno == EINTR) {
    }
    for (std::span<const listed_interface> rest = session.listed; !rest.empty();) {
        const auto portion = rest.first(std::min(rest.size(), PORTION));
        while (send(fd, portion.data(), portion.size_bytes(), MSG_NOSIGNAL) < 0 && errno == EINTR) {
        }
        rest = rest.subspan(portion.size());
    }
}

/// False when the process has ended before the last one was there.
bool receive_list(int fd, std::vector<listed_interface>& listed) {
    for (std::span<listed_interface> rest = listed; !rest.empty();) {
        ssize_t got = 0;
        while ((got = recv(fd, rest.data(), rest.size_bytes(), 0)) < 0 && errno == EINTR) {
        }
        if (got <= 0) {
            return false;
        }
        rest = rest.subspan(static_cast<std::size_t>(got) / sizeof(listed_interface));
    }
    return true;
}

/// False when the process has ended without a word.
bool receive_outcome(int fd, opened_session& session) {
    outcome_message outcome;
    iovec body{&outcome, sizeof outcome};
    descriptor_room room;
    msghdr message = message_of(body, room);
    ssize_t got = 0;
    while ((got = recvmsg(fd, &message, MSG_CMSG_CLOEXEC)) < 0 && errno == EINTR) {
    }
    if (got != static_cast<ssize_t>(sizeof outcome)) {
        return false;
    }
    if (const cmsghdr* const beside = CMSG_FIRSTHDR(&message);
        beside != nullptr && beside->cmsg_level == SOL_SOCKET && beside->cmsg_type == SCM_RIGHTS) {
        std::memcpy(&session.socket_fd, CMSG_DATA(beside), sizeof(int));
    }
    session.result = outcome.result;
    session.channel_type = outcome.channel_type;
    session.reason.assign(outcome.reason.data(), outcome.reason_length);
    session.listed.resize(outcome.listed);
    return receive_list(fd, session.listed);
}

/// Descriptors of the process that this one came from: the pipe to the analyser and the sessions' sockets are to end
/// with that one.
void close_inherited(int kept) {
    constexpr long highest = 4096;
    const long end = std::min(sysconf(_SC_OPEN_MAX), highest);
    for (int fd = STDERR_FILENO + 1; fd < end; ++fd) {
        if (fd != kept) {
            close(fd);
        }
    }
}

/// Where the system knows that, the process ends with the one that it came from, however that ended.
void end_with([[maybe_unused]] pid_t parent) {
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(1);
    }
#endif
}

/// The life of the process.
[[noreturn]] void set_up_and_end(int fd, router_access& access, std::optional<std::int32_t> index, unsigned patience) {
    struct sigaction action {};
    action.sa_handler = SIG_IGN;
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        sigaction(number, &action, nullptr);  // whoever started it ends it
    }
    action.sa_handler = SIG_DFL;
    sigaction(SIGALRM, &action, nullptr);
    alarm(patience);
    close_inherited(fd);
    send_outcome(fd, index ? access.trace(*index) : access.list());
    _exit(0);
}

}  // namespace

bool session_setup::start(router_access& access, std::optional<std::int32_t> index, unsigned patience) {
    give_up();
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        return false;
    }
    patience_ = patience;
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        end_with(parent);
        set_up_and_end(ends[1], access, index, patience);
    }
    const int error = errno;
    close(ends[1]);
    fd_ = ends[0];
    if (process_ < 0) {
        give_up();
        errno = error;
        return false;
    }
    return true;
}

opened_session session_setup::take() {
    opened_session session;
    if (!receive_outcome(fd_, session)) {
        session = {};
        session.reason = "no answer within " + std::to_string(patience_) + " s";
    }
    end_process();
    return session;
}

void session_setup::give_up() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
    }
    end_process();
}

void session_setup::end_process() {
    if (process_ > 0) {
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    if (fd_ >= 0) {
        close(fd_);
    }
    process_ = -1;
    fd_ = -1;
}

}  // namespace ifwatch::extcap
