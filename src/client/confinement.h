#pragma once

namespace ifwatch {

/// What the record loop works with, beside the standard output and the error stream.
struct record_loop_files {
    int input_fd = -1;        // the session; -1: what is read is closed with the end of the process
    int sink_fd = -1;         // -1: none
    bool has_pipe = false;    // a signal, or the end of the run, removes it
    bool asks_clock = false;  // the time is asked for
};

/// Gives up, for the rest of the process, every system call that the record loop, the signal handlers and the exit do
/// not need: writing is left for the standard output, the error stream and the sink only; nothing can be opened,
/// connected or started any more. A refused call fails with EPERM. Does nothing in a program built without libseccomp.
/// Returns 0, or the error (errno) for which the system would not do it; the process then goes on as it was.
int confine_to_record_loop(const record_loop_files& files);

}  // namespace ifwatch
