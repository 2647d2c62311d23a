#pragma once

#include <cstddef>
#include <string>

namespace ifwatch::cases {

inline constexpr std::size_t MAX_INPUT_FILE = std::size_t{256} << 20;

/// Reads a whole file of at most MAX_INPUT_FILE octets. False with its name and the reason in `error`.
bool read_input(const std::string& path, std::string& octets, std::string& error);

}  // namespace ifwatch::cases
