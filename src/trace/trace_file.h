#pragma once

#include "trace/trace_target.h"

namespace ifwatch {

struct display_context;

/// Reads a trace file, the octets of a version-1 session from its acknowledge on ("-": the standard input), and
/// decodes its records. Returns 0 at its end or at a broken record; 1 when the acknowledge octet is missing, the
/// standard output failed or there is no memory for a record. Ends the process when the file cannot be opened.
int read_trace_file(const char* name, const trace_target& target, display_context& context);

}  // namespace ifwatch
