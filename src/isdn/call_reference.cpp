#include "isdn/call_reference.h"

namespace ifwatch {

std::int32_t call_reference(octets message) {
    const int length = message[1];
    if (length == 0) {
        return 0;
    }
    std::uint32_t value = message[2] & 0x7FU;
    for (int i = 1; i < length; ++i) {
        value = value << 8 | message[2 + i];
    }
    return static_cast<std::int32_t>(value);
}

}  // namespace ifwatch
