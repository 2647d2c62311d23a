#include "read/report/x25_flow.h"

namespace ifwatch::reporting {

namespace {

// A busy host or a printer out of paper holds a call for moments; whoever waits for this long calls somebody.
constexpr std::uint32_t LONG_MS = 30'000;

bool stands_still(const x25_flow& flow) { return flow.full || flow.not_ready; }

standstill ended(const x25_flow& flow, const journal& about, place at) {
    const std::uint32_t length = elapsed(flow.stood_still, at);
    if (!stands_still(flow) || length < LONG_MS || flow.lost != about.lost) {
        return {};
    }
    return {flow.stood_still, length, flow.not_ready, flow.window};
}

void begin_standstill(x25_flow& flow, const journal& about, place at) {
    if (!stands_still(flow)) {
        flow.stood_still = at;
        flow.lost = about.lost;
    }
}

}  // namespace

void take_x25_data(x25_flow& flow, const journal& about, place at, int ps, int mask) {
    flow.in_order = flow.packets > 0 && ps == flow.next ? flow.in_order + 1 : 0;
    ++flow.packets;
    flow.next = (ps + 1) & mask;
    if (!flow.known) {
        return;
    }
    const int outstanding = (flow.next - flow.acknowledged) & mask;
    if (outstanding > flow.window) {
        flow.window = outstanding;
        flow.full = false;
    }
    if (outstanding == flow.window) {
        begin_standstill(flow, about, at);
        flow.full = true;
    }
}

standstill take_x25_acknowledgement(x25_flow& flow, const journal& about, place at, int pr, int mask) {
    flow.known = true;
    flow.acknowledged = pr;
    const bool still_full = flow.full && ((flow.next - pr) & mask) >= flow.window;
    if (!flow.full || still_full) {
        return {};
    }
    const standstill over = flow.not_ready ? standstill() : ended(flow, about, at);
    flow.full = false;
    return over;
}

standstill take_x25_readiness(x25_flow& flow, const journal& about, place at, bool ready) {
    if (!ready) {
        begin_standstill(flow, about, at);
        flow.not_ready = true;
        return {};
    }
    const standstill over = flow.not_ready ? ended(flow, about, at) : standstill();
    flow.not_ready = false;
    return over;
}

standstill reset_x25_flow(x25_flow& flow, const journal& about, place at) {
    const standstill over = ended(flow, about, at);
    flow.known = true;
    flow.next = 0;
    flow.acknowledged = 0;
    flow.more = false;
    flow.full = false;
    flow.not_ready = false;
    return over;
}

}  // namespace ifwatch::reporting
