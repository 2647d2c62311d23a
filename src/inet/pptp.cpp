#include "inet/pptp.h"

#include <algorithm>

#include "base/print.h"
#include "display/display_context.h"
#include "inet/pptp_fields.h"

namespace ifwatch {

namespace {

constexpr int FIXED_HEADER_LENGTH = 12;
constexpr int LENGTH_MAX = static_cast<int>(std::tuple_size_v<decltype(pptp_state::buffer)>);
constexpr int CONTROL_MESSAGE = 1;

/// Stores octets of `segment` until the state holds what it needs; true when it does.
bool collect_needed(pptp_state& state, octets& segment) {
    const auto taken = segment.run(0, std::min(state.needed - state.count, segment.length));
    std::copy(taken.begin(), taken.end(), state.buffer.begin() + state.count);
    segment = segment.skip(static_cast<int>(taken.size()));
    state.count += static_cast<int>(taken.size());
    return state.count == state.needed;
}

octets collected(pptp_state& state) { return octets_of(state.buffer).cut(state.count); }

}  // namespace

std::optional<octets> pptp_collect(pptp_state& state, octets& segment) {
    if (!collect_needed(state, segment)) {
        return std::nullopt;
    }
    if (state.phase == 0) {
        state.phase = 1;
        state.needed = std::clamp<int>(collected(state).be16(0), FIXED_HEADER_LENGTH, LENGTH_MAX);
        if (!collect_needed(state, segment)) {
            return std::nullopt;
        }
    }
    const octets message = collected(state);
    state.count = 0;
    state.needed = FIXED_HEADER_LENGTH;
    state.phase = 0;
    return message;
}

void dump_pptp(octets segment, display_context& context, int destination_port) {
    pptp_state& state = context.pptp[destination_port == PPTP_PORT ? 0 : 1];
    while (const auto message = pptp_collect(state, segment)) {
        if (message->be16(2) == CONTROL_MESSAGE) {
            dump_pptp_control_message(*message);
        } else {
            print<"\t\t\tunknown PPTP message\n">();
        }
    }
}

}  // namespace ifwatch
