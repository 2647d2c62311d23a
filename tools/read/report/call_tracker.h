#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "read/report/call_message.h"
#include "read/report/journal.h"
#include "read/report/remembered.h"

namespace ifwatch::reporting {

/// Which call a message belongs to.
struct call_key {
    std::uint32_t link = 0;  // a TEI; of the PABX its own number of the call
    std::uint32_t port = 0;  // of the PABX
    std::int32_t reference = 0;
    std::int32_t by_user = 0;  // 1: the user's side of the interface began it

    [[nodiscard]] constexpr bool operator==(const call_key&) const = default;
};

/// How a message of a call came.
struct call_carrier {
    std::uint32_t link = 0;
    std::uint32_t port = 0;
    bool from_user = false;  // from the user's side of the interface to the network's
    bool to_all = false;     // to every terminal of the line
};

/// One call, as far as it was seen.
struct call_record {
    place first;
    std::uint64_t lost = 0;     // records that had been lost up to its SETUP
    bool sent = false;          // the router began it
    bool began_before = false;  // its SETUP was not seen
    bool to_all = false;        // offered to every terminal of the line
    bool answered = false;      // the other side said anything
    int setups = 0;
    place last_setup;
    call_message told;  // all that its messages said, the last word of each
    std::optional<place> alerting;
    std::optional<place> connected;
    std::uint32_t connected_link = 0;
    std::optional<place> cleared;
    bool cleared_by_router = false;
    bool cleared_by_origin = false;
    bool suspended = false;
    bool restarted = false;  // cleared by a RESTART
    bool replaced = false;   // another call took its reference before its end was seen
};

/// The calls of one D-channel, or of the PABX.
struct call_tracker {
    static constexpr std::size_t CHANNELS = 32;

    remembered<call_key, call_record> calls;
    std::array<call_key, CHANNELS> on_channel{};  // the last call that was to have it
    place first;                                  // where the first of them began, remembered or not
    std::uint64_t count = 0;
    std::uint64_t connected = 0;
};

/// One signalling message, from its protocol discriminator on. False when it is no message of a call.
bool take_call_message(call_tracker& tracker, const journal& about, const frame& what, const call_carrier& carrier);

/// Layer 1 went down with the record at hand: tells of the calls in the middle of which it did.
void take_line_loss(call_tracker& tracker, const journal& about);

/// What can only be said at the end. Nothing may be taken behind it.
void finish_calls(call_tracker& tracker, const journal& about);

void print_calls(const call_tracker& tracker, const journal& about);

}  // namespace ifwatch::reporting
