#pragma once

#include <cstdint>

namespace ifwatch::read {

/// Lets a line on the error stream, which is a terminal, show from one second on how much of `octets` is read, of all
/// files together. Without this call the functions below do nothing.
void start_progress(std::uint64_t octets);

/// Tells how far reading of a file has come; what is shown follows every tenth of a second.
void show_progress(std::uint64_t octets_read, std::uint64_t packets);

/// Ends a file: from here on its octets and packets count with those of the next.
void end_file_progress(std::uint64_t octets, std::uint64_t packets);

/// Makes the line go, until it is shown again.
void erase_progress();

}  // namespace ifwatch::read
