#pragma once

namespace ifwatch {

/// From now on a hang-up, interrupt or termination signal removes this named pipe and ends the process with status 1; a
/// broken pipe (the analyser has closed its end) removes it and ends the process as that signal does by default. The
/// name must live until remove_pipe.
void remove_pipe_on_signal(const char* pipe_name);

/// Removes the pipe at the end of a run that no signal ended.
void remove_pipe();

}  // namespace ifwatch
