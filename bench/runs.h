#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ifwatch::bench {

/// A program and its arguments.
using command = std::vector<std::string>;

[[nodiscard]] command operator+(command first, const command& second);

/// Ends the measuring, with a message that names the program, unless a thing was done.
void stop_unless(bool done, const command& what);

/// Processor time of a run in seconds; a run that fails ends the measuring.
[[nodiscard]] double run(const command& what, int output = -1);

/// The same into a pipe that is read as fast as it fills; adds what came to `text`.
double run_into_pipe(const command& what, std::size_t& text);
double run_into_pipe(const command& what);

/// The same with a standard input that another program fills.
[[nodiscard]] double run_behind(const command& feeder, const command& what);

}  // namespace ifwatch::bench
