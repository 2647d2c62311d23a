#include "read/report/isdn_tracker.h"

#include "isdn/lapd.h"

namespace ifwatch::reporting {

namespace {

constexpr int SAPI_CALL_CONTROL = 0;
constexpr int GROUP_TEI = 127;
constexpr int PABX_PREFIX = 6;  // the port, and the router's own number of the call

/// A command comes from the user with C/R = 0, from the network with C/R = 1 (ITU-T Q.921 clause 3.3.2); frames that
/// carry a message are commands.
bool is_from_user(octets frame) { return (frame[0] & 0x02) == 0; }

}  // namespace

bool take_lapd(isdn_tracker& tracker, const journal& about, const frame& what) {
    tracker.seen = true;
    const octets data = what.data;
    const bool link_down = take_lapd_frame(tracker.links, about, what);
    if (lapd_sapi(data) != SAPI_CALL_CONTROL || !lapd_carries_layer3(data)) {
        return link_down;
    }
    const bool to_all = lapd_tei(data) == GROUP_TEI && !lapd_is_i_frame(data);
    const call_carrier carrier{static_cast<std::uint32_t>(lapd_tei(data)), 0, is_from_user(data), to_all};
    take_call_message(tracker.calls, about, what.with(data.skip(lapd_header_length(data))), carrier);
    return link_down;
}

bool take_pabx(isdn_tracker& tracker, const journal& about, const frame& what) {
    tracker.seen = true;
    constexpr std::uint32_t is_port = 1U << 16;
    const call_carrier carrier{what.data.le32(2), is_port | what.data.be16(0), !what.sent, false};
    return take_call_message(tracker.calls, about, what.with(what.data.skip(PABX_PREFIX)), carrier);
}

void finish_isdn(isdn_tracker& tracker, const journal& about) {
    finish_lapd(tracker.links, about);
    finish_calls(tracker.calls, about);
}

bool isdn_was_seen(const isdn_tracker& tracker) { return tracker.seen; }

void print_isdn_section(const isdn_tracker& tracker, const journal& about) {
    print_lapd_section(tracker.links, about);
    print_calls(tracker.calls, about);
}

}  // namespace ifwatch::reporting
