#pragma once

#include <cstddef>
#include <string_view>

namespace ifwatch {

/// write(2) that waits for room also where the stream does not block: whoever shares a terminal or a pipe with this
/// program may have set it so. Like write(2) it may take a part, and -1 tells in errno why not, EINTR included.
[[nodiscard]] long write_patiently(int fd, const char* data, std::size_t length);

/// Writes all of the text, going on after an interruption. False, with errno set, when the descriptor fails or takes
/// nothing; a part may have been written then.
[[nodiscard]] bool write_whole(int fd, std::string_view text);

}  // namespace ifwatch
