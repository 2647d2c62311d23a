#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ifwatch {

inline constexpr int ADDINFO_LENGTH = 1024;  // what the trace daemon takes

/// The elements that follow the trace request: filters, line selection, and what is asked for.
///
///     FF FF FF 06                        filter section, only with filters
///       length(3) kind(1) text...          one for each filter, in order
///     00 00 00 00
///     00 00 00 0B                        in list mode: the interface list is asked for
///   or
///     00 00 02 07 vci(2)                 each only when given
///     00 00 01 08 vpi(1)
///     00 00 00 09
///     00 00 00 03                        START
///     00 00 00 00
struct addinfo_buffer {
    std::array<std::uint8_t, ADDINFO_LENGTH> data{};
    int used = 0;  // octets that the elements take: more than ADDINFO_LENGTH when they do not fit
};

/// What selects one connection of an ADSL line.
struct atm_parameters {
    std::int32_t vpi = -1;   // negative: not given
    std::int32_t vci = -1;   // negative: not given
    std::uint8_t flags = 0;  // bit 0: the line flag
};

/// Appends a filter at `used_length` and returns the new used length; the first one opens the filter section. The kind
/// is 'I' or 'B' (one-way, two-way IP session), 'o' (OR between its neighbours), 's' or 'd' (source, destination MAC
/// address) or 'l' (LLC frames); the daemon interprets the text, which may be absent. Octets that do not fit are
/// counted but not written, so that a used length above the buffer's size tells by how much it is too small.
int add_filter(std::span<std::uint8_t> buffer, const char* text, char kind_letter, int used_length);

/// Closes the filter section and appends the line elements and the request itself. Returns the length to send, counted
/// like that of add_filter; 0 when a version below 2 has nothing to tell.
int build_addinfo(int version, std::span<std::uint8_t> buffer, const atm_parameters& atm, bool list_mode,
                  int used_length);

}  // namespace ifwatch
