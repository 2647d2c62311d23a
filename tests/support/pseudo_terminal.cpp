#include "support/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

namespace ifwatch::test {

pseudo_terminal::pseudo_terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    termios mode{};
    if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0 ||
        (stream_ = open(ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC)) < 0 || tcgetattr(stream_, &mode) != 0) {
        throw std::runtime_error("no pseudo-terminal");
    }
    cfmakeraw(&mode);
    if (tcsetattr(stream_, TCSANOW, &mode) != 0) {
        throw std::runtime_error("the pseudo-terminal cannot be made raw");
    }
    keeper_ = std::thread([this] { keep(); });
}

pseudo_terminal::~pseudo_terminal() {
    static_cast<void>(take());
    hang_up();
}

/// Reading fails when nobody has the stream any more.
void pseudo_terminal::keep() {
    char block[4096];
    pollfd watched[] = {{screen_, POLLIN, 0}, {keeping_.reader(), 0, 0}};
    while (poll(watched, 2, -1) >= 0 && watched[1].revents == 0) {
        const ssize_t count = read(screen_, block, sizeof block);
        if (count <= 0) {
            return;
        }
        kept_.append(block, static_cast<std::size_t>(count));
    }
}

void pseudo_terminal::hang_up() {
    if (screen_ >= 0) {
        keeping_.close_writer();
        end_keeping();
        close(screen_);
        screen_ = -1;
    }
}

void pseudo_terminal::end_keeping() {
    if (keeper_.joinable()) {
        keeper_.join();
    }
}

std::string pseudo_terminal::take() {
    if (stream_ >= 0) {
        close(stream_);
        stream_ = -1;
        end_keeping();
    }
    return kept_;
}

outcome run_on_terminal(command what, on_terminal streams) {
    pseudo_terminal output;
    pseudo_terminal errors;
    if (streams != on_terminal::ERRORS) {
        what.output_fd = output.stream();
    }
    if (streams != on_terminal::OUTPUT) {
        what.errors_fd = errors.stream();
    }
    outcome got = run(what);
    got.output += output.take();
    got.errors += errors.take();
    return got;
}

}  // namespace ifwatch::test
