#pragma once

#include <cstdint>

#include "display/display_context.h"

namespace ifwatch::fuzz {

/// Ends the run as a finding unless `holds`; `what` goes to the error stream.
void require(bool holds, const char* what);

/// The processor time that this thread has used. Time in which another process or thread has the processor does not
/// count, so a busy machine makes no finding.
[[nodiscard]] std::int64_t thread_time_ns();

/// The most processor time that a record may take. The fuzz targets are instrumented and several times slower than
/// the program that is used, and have to keep the same limit.
inline constexpr std::int64_t RECORD_TIME_MAXIMUM_NS = 50'000'000;

/// What holds of the state of the decoders between two records, whatever the records were: every buffer is filled
/// within its size, every mode has a value that it knows, and nothing that was entered is still open.
void check_state(const display_context& context);

/// Shows the current record and checks its limits: at most 512 characters for each octet held, those of frames begun
/// in earlier records included, and 4096 more; processor time; the state behind it; and nothing changed of what the
/// command line chose. Takes the standard output over.
void show_checked(display_context& context);

}  // namespace ifwatch::fuzz
