#pragma once

#include <string>

namespace ifwatch::read {

/// Prepares both streams: what a stranger sent cannot act on a terminal, and with colours the first line of each record
/// is bold, hexadecimal lines are dim, and lines that name an interface are cyan. Coloured text has the form for a
/// terminal wherever it goes.
void start_output(bool colored);

/// One line on the error stream, which begins with the program's name.
void say(const std::string& text);

}  // namespace ifwatch::read
