#pragma once

// What a text looks like on a terminal, where the control characters in it must not act: strangers sent most of what
// this program prints. Printable ASCII, line feeds and tabs stay as they are. Every other octet is shown as a
// backslash, an x and its two hexadecimal digits (an escape as \x1b), those of eight bits as well: whether one of
// these acts, and how, depends on the terminal's character set.

#include <string_view>

#include "base/text_sink.h"

namespace ifwatch {

/// Puts a text into the sink in the form for a terminal, up to four times as long. A sink that is full and cannot be
/// drained cuts it, perhaps within the form of an octet. Allocates nothing; a signal handler may call it.
void put_terminal_text(text_sink& sink, std::string_view text);

/// Writes a text in the form for a terminal, in pieces through a fixed buffer. False, with errno set, when the
/// descriptor fails; a part may have been written then.
[[nodiscard]] bool write_terminal_text(int fd, std::string_view text);

}  // namespace ifwatch
