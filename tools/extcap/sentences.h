#pragma once

#include <span>
#include <string>

#include "trace/connect.h"

namespace ifwatch::extcap {

// What the analyser asks for before it captures: one sentence a line, a word and {key=value} groups. Nothing here
// contacts the router.

/// The program and its one interface.
[[nodiscard]] std::string interface_sentences();

/// Every link type that a capture may have: the chosen interface of the router decides.
[[nodiscard]] std::string link_type_sentences();

/// The options of a capture, as fields of a form.
[[nodiscard]] std::string option_sentences();

/// The interfaces of a router, as values of the option "interface".
[[nodiscard]] std::string interface_value_sentences(std::span<const listed_interface> listed);

/// The text of --help.
[[nodiscard]] const char* help_text();

}  // namespace ifwatch::extcap
