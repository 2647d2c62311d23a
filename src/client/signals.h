#pragma once

#include <csignal>

namespace ifwatch {

/// While it lives, the signals that remove_pipe_on_signal handles wait.
class held_signals {
public:
    held_signals();
    ~held_signals();
    held_signals(const held_signals&) = delete;
    held_signals& operator=(const held_signals&) = delete;
    held_signals(held_signals&&) = delete;
    held_signals& operator=(held_signals&&) = delete;

private:
    sigset_t before_{};
};

/// From now on a hang-up, interrupt or termination signal removes this named pipe and ends the process with status 1; a
/// broken pipe (the analyser has closed its end) removes it and ends the process as that signal does by default. The
/// name must live until remove_pipe.
void remove_pipe_on_signal(const char* pipe_name);

/// From now on a write that would take a file past the limit that the user has set for files fails, like one to a full
/// disk, instead of ending the process without a word.
void survive_file_size_limit();

/// Gives a program that is started what this one was started with. A child calls it before it becomes that program.
void restore_file_size_limit();

/// Removes the pipe at the end of a run that no signal ended.
void remove_pipe();

}  // namespace ifwatch
