#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ifwatch::sim {

/// Writes a whole file: it appears complete under its name or not at all, and an old one stays until then. What is no
/// regular file, such as a device or a pipe, is written to; an empty path is the standard output. False with the name
/// and the reason in `error`.
bool write_output(const std::string& path, std::string_view text, std::string& error);
bool write_output(const std::string& path, std::span<const std::uint8_t> octets, std::string& error);

}  // namespace ifwatch::sim
