#pragma once

namespace ifwatch {

/// Print the usage text, or the extended help, to the error stream. Return 1, the exit status of both.
int print_usage();
int print_help();

}  // namespace ifwatch
