#pragma once

#include <span>

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

// Cause and diagnostic codes, ITU-T X.25 clauses 5.2.3, 5.4.3, 5.5.1 and 5.7.2, annex E.

extern const std::span<const named_value> X25_CLEARING_CAUSES;
extern const std::span<const named_value> X25_RESETTING_CAUSES;
extern const std::span<const named_value> X25_RESTARTING_CAUSES;
extern const std::span<const named_value> X25_REGISTRATION_CAUSES;

/// The name of a cause from the table of its packet. A code that the table does not hold has an empty name, except that
/// one with the top bit set comes from the DTE.
[[nodiscard]] table_text x25_cause_name(int cause, std::span<const named_value> causes);

/// The name of a diagnostic code; empty where it has none.
[[nodiscard]] table_text x25_diagnostic_name(int code);

/// Prints a cause with its name. Returns the one octet it takes.
int dump_x25_cause(octets field, std::span<const named_value> causes);

/// Prints a diagnostic code with its name. Returns the one octet it takes.
int dump_x25_diagnostic(octets field);

}  // namespace ifwatch
