#pragma once

#include <cstdint>

namespace ifwatch {

/// The name of a WLAN management object, or nullptr when records of that object are not shown: never shown, or shown
/// only with `show_hidden`. Table names are padded with blanks to 32 characters. An unknown identifier gets a name
/// that holds its number. A name that holds a number is overwritten by the next call.
[[nodiscard]] const char* wlan_oid_name(std::uint32_t identifier, bool show_hidden);

}  // namespace ifwatch
