#pragma once

namespace ifwatch {

/// The analyser when TRACE_EXEC names no other.
inline constexpr char DEFAULT_ANALYSER[] = "ethereal -Sk -i";

/// Starts the analyser on a named pipe: the command of TRACE_EXEC, or the default one, with the pipe as its last
/// argument. The run goes on at once; an analyser that does not start says so itself.
void start_analyser(const char* pipe_name);

/// Starts a program in a process of its own: the words of `command`, which is split in place at its blanks, searched
/// along PATH. No shell is involved, so a word cannot be quoted; of more than 40 words the last keeps the rest. The
/// process is not waited for.
void exec_cmd(char* command);

}  // namespace ifwatch
