#pragma once

#include <string>

namespace ifwatch::convert {

/// Whether a command line asks for a conversion instead of a daemon: its first argument is "import" or "export". Only
/// the first: CLI11 finds its sub-commands anywhere, and a case file may be called so.
[[nodiscard]] bool asks_for_conversion(int argc, char** argv);

/// Does what such a command line asks for: makes a case file of a capture, or the reverse. False with a one-line
/// `error` that says what is wrong and where; then there is no new file. `note` is for the error stream.
bool convert(int argc, char** argv, std::string& note, std::string& error);

}  // namespace ifwatch::convert
