#pragma once

namespace ifwatch::extcap {

/// From now on a hang-up, interrupt or termination signal ends the process with status 0: nothing has been written yet.
/// A broken pipe is left to the failing write.
void end_on_signals();

/// From now on those signals end the stream of this socket instead, so that its reader meets the end. A write that
/// does not come to its end within two seconds ends the process, with status 0 too.
void end_stream_on_signals(int socket_fd);

/// Whether such a signal has come.
[[nodiscard]] bool stop_asked();

}  // namespace ifwatch::extcap
