#include "inet/pptp.h"

#include <algorithm>

#include "base/print.h"
#include "display/display_context.h"
#include "inet/pptp_fields.h"

namespace ifwatch {

namespace {

constexpr int FIXED_HEADER_LENGTH = 12;
constexpr int CONTROL_MESSAGE = 1;

/// Takes octets of `segment` until the state has what it needs; true when it does. What the segment declares and does
/// not hold counts as zeros for a message that has begun.
bool collect_needed(pptp_state& state, octets& segment) {
    if (state.count == 0 && segment.held() == 0) {
        return false;
    }
    const int taken = std::clamp(segment.length, 0, state.needed - state.count);
    std::uint8_t* const begin = state.buffer.data();
    const auto held = segment.run(0, std::min(taken, pptp_state::MAXIMUM - state.kept()));
    std::uint8_t* const held_end = std::copy(held.begin(), held.end(), begin + state.kept());
    state.count += taken;
    std::fill(held_end, begin + state.kept(), std::uint8_t{0});
    segment = segment.skip(taken);
    return state.count == state.needed;
}

octets collected(pptp_state& state) { return octets_of(state.buffer).cut(state.kept()); }

}  // namespace

std::optional<octets> pptp_collect(pptp_state& state, octets& segment) {
    if (!collect_needed(state, segment)) {
        return std::nullopt;
    }
    if (state.phase == 0) {
        state.phase = 1;
        state.needed = std::max<int>(collected(state).be16(0), FIXED_HEADER_LENGTH);
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
