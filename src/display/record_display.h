#pragma once

#include <cstddef>

#include "display/display_context.h"

namespace ifwatch {

/// Adjusts the mode flags to the channel type of the traced interface: bits that mean nothing there go, and when none
/// is left the default of that channel type is taken.
void apply_default_flags(display_context& context);

/// Prints a line when sequence numbers are missing before the current record (a negative count when they jump back).
/// The first record never reports.
void report_lost_records(display_context& context);

/// The most characters that showing the current record prints, whatever it holds: in proportion to its octets and to
/// those of frames begun in earlier records that it may complete. Only frames made to flood a terminal come near it.
[[nodiscard]] std::size_t record_output_bound(const display_context& context);

/// Shows the current record: the header line, the hexadecimal output, and the payload decoded by the decoder of the
/// channel type. Everything goes to the output buffer; the caller flushes it.
void display_record(display_context& context);

}  // namespace ifwatch
