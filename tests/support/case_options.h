#pragma once

#include <cstdint>
#include <string>

namespace ifwatch::test {

/// The mode flags that the text of an options line gives, as the command line would.
[[nodiscard]] std::uint32_t mode_flags_of(const std::string& options_line);

}  // namespace ifwatch::test
