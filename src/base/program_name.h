#pragma once

#include <string_view>

namespace ifwatch {

inline constexpr int PROGRAM_NAME_LENGTH = 32;  // a longer name is cut

/// Takes the program's name from the path it was started by: the part behind the last '/'. nullptr leaves it as it is.
void set_program_name(const char* path);

/// The name as it stands in messages and in default file names; "ifwatch" until it is set.
[[nodiscard]] std::string_view program_name();

/// The same name with a terminating zero, writable as an argument vector wants it.
[[nodiscard]] char* program_name_argument();

}  // namespace ifwatch
