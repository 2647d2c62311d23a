#include "isdn/pabx.h"

#include "display/mode_flags.h"
#include "isdn/call_reference.h"
#include "isdn/q931_message.h"

namespace ifwatch {

namespace {

constexpr int RECORD_PREFIX = 6;  // two octets and a 32-bit value

}  // namespace

void dump_pabx_message(octets payload, std::uint32_t mode_flags, std::int32_t /*tei_filter*/, std::int32_t cref_filter,
                       std::uint32_t /*record_flags*/) {
    const octets message = payload.skip(RECORD_PREFIX);
    if (!has_call_reference(message[0])) {
        return;
    }
    const bool filtered = (mode_flags & MODE_CREF_FILTER) != 0 && cref_filter != -1;
    if (!filtered || call_reference(message) == cref_filter) {
        dump_layer3(0, message);
    }
}

}  // namespace ifwatch
