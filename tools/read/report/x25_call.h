#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "read/report/journal.h"
#include "read/report/page.h"
#include "read/report/x25_flow.h"

namespace ifwatch::reporting {

/// Why a call was cleared or reset, or a link restarted.
struct x25_reason {
    int cause = 0;
    int diagnostic = 0;
    bool sent = false;  // by the router
};

/// One X.25 call, or what is seen of a permanent circuit.
struct x25_call {
    enum class ending : std::uint8_t { LASTS, CLEARED, RESTARTED, LINK_DOWN, REPLACED };

    place first;
    std::uint64_t lost = 0;  // records that had been lost up to its first packet
    int link = 0;
    int channel = 0;
    bool sent = false;  // the router called
    bool began_before = false;
    bool permanent = false;  // no call was needed since the restart
    bool fast_select = false;
    short_text called;
    short_text calling;
    std::optional<place> connected;
    ending how = ending::LASTS;
    std::optional<place> ended;
    x25_reason clearing;
    std::uint64_t resets = 0;
    std::uint64_t interruptions = 0;  // RNR
    std::array<x25_flow, 2> flows{};  // of the router's packets, and of those that it receives
};

/// A row's text of a call.
void put_x25_call(text_sink& out, const x25_call& call, const journal& about);

/// Says what went wrong with a call, which is over or the capture is.
void conclude_x25_call(x25_call& call, const journal& about);

/// Says that a direction stood still, if it did.
void tell_standstill(const x25_call& call, const journal& about, const standstill& over, bool from_router);

/// Says that a call was reset, where that is no everyday event.
void tell_reset(const x25_call& call, const journal& about, place at, const x25_reason& why);

/// The diagnostic code of a reason, in words.
void put_diagnostic(text_sink& out, const x25_reason& why);

/// A restart: its name in words, and whether its cause is of those that come every day.
void put_restart_reason(text_sink& out, const x25_reason& why);
[[nodiscard]] bool is_everyday_restart(const x25_reason& why);

/// Who did it: "the router", "the network", "the other side"; nothing where the capture has no directions.
[[nodiscard]] const char* x25_actor(const x25_reason& why, const journal& about);

}  // namespace ifwatch::reporting
