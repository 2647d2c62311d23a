#pragma once

namespace ifwatch::extcap {

/// From now on a hang-up, interrupt or termination signal ends the process with status 0: nothing has been written yet.
/// A broken pipe is left to the failing write.
void end_on_signals();

/// From now on those signals make the descriptor that this returns readable instead. What is then still to be written
/// has two seconds; behind them the process ends, with status 0 too. -1 (errno set) without a descriptor.
int tell_signals();

}  // namespace ifwatch::extcap
