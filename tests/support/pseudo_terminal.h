#pragma once

#include <string>
#include <thread>

#include "support/octet_pipe.h"
#include "support/process.h"

namespace ifwatch::test {

/// A terminal that shows nothing and keeps what is written to it. It is raw: an octet arrives as it was written.
class pseudo_terminal {
public:
    /// Throws when the system has none to give.
    pseudo_terminal();
    ~pseudo_terminal();
    pseudo_terminal(const pseudo_terminal&) = delete;
    pseudo_terminal& operator=(const pseudo_terminal&) = delete;
    pseudo_terminal(pseudo_terminal&&) = delete;
    pseudo_terminal& operator=(pseudo_terminal&&) = delete;

    /// What a program is given as its stream.
    [[nodiscard]] int stream() const { return stream_; }

    /// Everything that was written, when all programs that had the stream have ended; nothing can be written then.
    [[nodiscard]] std::string take();

    /// Takes the terminal away from the programs that have its stream.
    void hang_up();

private:
    void keep();
    void end_keeping();

    int screen_ = -1;
    int stream_ = -1;
    octet_pipe keeping_;  // closed on one side to end that
    std::string kept_;
    std::thread keeper_;
};

/// Which of a program's streams are terminals. Each is one of its own.
enum class on_terminal { OUTPUT, ERRORS, BOTH };

/// Runs a program to its end. The outcome holds what was written to the terminals, too.
outcome run_on_terminal(command what, on_terminal streams);

}  // namespace ifwatch::test
