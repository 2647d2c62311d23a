#pragma once

namespace ifwatch {

/// How much the run tells on the error stream: 0 at start, one more for each -v. Diagnostics print at or above the
/// level that each of them names.
extern int verbose_level;  // NOLINT(*-avoid-non-const-global-variables): a run has one

}  // namespace ifwatch
