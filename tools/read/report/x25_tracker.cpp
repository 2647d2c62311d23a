#include "read/report/x25_tracker.h"

#include <bit>

#include "read/report/page.h"
#include "read/report/x25_call_packet.h"

namespace ifwatch::reporting {

namespace {

using ending = x25_call::ending;

constexpr int LAPB_LINK = -1;
constexpr int SEQUENCE_BITS = 3;  // of the general format identifier

// Nothing but X.25 numbers its packets one behind the other for so long.
constexpr int SURELY_IN_ORDER = 4;

constexpr int MANY_RESTARTS = 3;
constexpr std::uint32_t RESTART_WAIT_MS = 10'000;

x25_tracker::link_state& state_of(x25_tracker& tracker, int link) {
    return tracker.links[static_cast<std::size_t>(link) % x25_tracker::LINKS];
}

const x25_tracker::link_state& state_of(const x25_tracker& tracker, int link) {
    return tracker.links[static_cast<std::size_t>(link) % x25_tracker::LINKS];
}

// --- Calls

void end_call(x25_tracker& tracker, const journal& about, x25_key key, x25_call& call, ending how, place at) {
    if (call.how == ending::LASTS) {
        call.how = how;
        call.ended = at;
        if (state_of(tracker, key.link).is_x25) {
            conclude_x25_call(call, about);
        }
    }
}

void note_channel(x25_tracker::link_state& link, int channel) {
    link.begun.resize(x25_tracker::CHANNELS / x25_tracker::WORD);
    link.begun[static_cast<std::size_t>(channel / x25_tracker::WORD)] |= 1ULL << channel % x25_tracker::WORD;
}

x25_call& begin_call(x25_tracker& tracker, const journal& about, const frame& what, x25_key key) {
    if (x25_call* const before = tracker.calls.find(key)) {
        end_call(tracker, about, key, *before, ending::REPLACED, what.at);
    }
    x25_call call;
    call.first = what.at;
    call.lost = about.lost;
    call.link = key.link;
    call.channel = key.channel;
    call.sent = what.sent;
    note_channel(state_of(tracker, key.link), key.channel);
    return tracker.calls.begin(key, *about.shared, call);
}

/// The call of a packet that only a call that stands can have. nullptr: it is over.
x25_call* standing_call(x25_tracker& tracker, const journal& about, const frame& what, x25_key key) {
    if (x25_call* const call = tracker.calls.find(key)) {
        return call->how == ending::LASTS ? call : nullptr;
    }
    if (key.channel == 0 || tracker.calls.ended_lately(key)) {
        return nullptr;
    }
    x25_call& call = begin_call(tracker, about, what, key);
    const x25_tracker::link_state& link = state_of(tracker, key.link);
    call.permanent = link.restarted && link.lost == about.lost;
    call.began_before = true;
    return &call;
}

/// Ends the call on one channel. Returns whether there was one that lasted.
bool end_call_on(x25_tracker& tracker, const journal& about, place at, x25_key key, ending how) {
    x25_call* const call = tracker.calls.find(key);
    if (call == nullptr) {
        return false;
    }
    const bool lasted = call->how == ending::LASTS && !call->permanent;
    end_call(tracker, about, key, *call, how, at);
    tracker.calls.finish(key);
    return lasted;
}

/// Everything on a link is over. Returns how many calls that were.
std::uint64_t end_calls(x25_tracker& tracker, const journal& about, place at, int link, ending how) {
    std::uint64_t ended = 0;
    int first = 0;  // channel of the word
    for (std::uint64_t& word : state_of(tracker, link).begun) {
        for (; word != 0; word &= word - 1) {  // the lowest channel goes
            const x25_key key{link, first + std::countr_zero(word)};
            ended += end_call_on(tracker, about, at, key, how) ? 1 : 0;
        }
        first += x25_tracker::WORD;
    }
    return ended;
}

void take_windows(x25_call& call, const x25_call_fields& fields) {
    const std::size_t from_calling = call.sent ? 0 : 1;
    if (fields.window_from_calling > 0 && fields.window_from_called > 0) {
        call.flows[from_calling].window = fields.window_from_calling;
        call.flows[1 - from_calling].window = fields.window_from_called;
    }
}

void take_call(x25_tracker& tracker, const journal& about, const frame& what, x25_key key, const x25_header& header) {
    const x25_call* const before = tracker.calls.find(key);
    const bool again = before != nullptr && before->how == ending::LASTS && !before->connected &&
                       !before->began_before && before->sent == what.sent;
    if (again) {
        return;
    }
    const x25_call_fields fields = read_x25_call_fields(what.data, header);
    x25_call& call = begin_call(tracker, about, what, key);
    call.called = fields.called;
    call.calling = fields.calling;
    call.fast_select = fields.fast_select;
    take_windows(call, fields);
}

void take_call_accepted(x25_tracker& tracker, const journal& about, const frame& what, x25_key key,
                        const x25_header& header) {
    x25_call* const call = standing_call(tracker, about, what, key);
    if (call == nullptr || call->connected) {
        return;
    }
    const x25_call_fields fields = read_x25_call_fields(what.data, header);
    if (call->began_before) {
        call->called = fields.called;
        call->calling = fields.calling;
        call->sent = !what.sent;
    } else {
        call->connected = what.at;
    }
    for (x25_flow& flow : call->flows) {
        flow.known = true;
    }
    take_windows(*call, fields);
}

x25_reason reason_of(const frame& what) { return {what.data[3], what.data[4], what.sent}; }

void take_clear(x25_tracker& tracker, const journal& about, const frame& what, x25_key key) {
    x25_call* call = tracker.calls.find(key);
    if (call != nullptr && call->how == ending::CLEARED) {
        if (call->clearing.sent != what.sent) {
            tracker.calls.finish(key);  // both sides at once: neither confirms
        }
        return;
    }
    call = standing_call(tracker, about, what, key);
    if (call != nullptr) {
        call->clearing = reason_of(what);
        end_call(tracker, about, key, *call, ending::CLEARED, what.at);
    }
}

void take_clear_confirmation(x25_tracker& tracker, x25_key key) {
    const x25_call* const call = tracker.calls.find(key);
    if (call != nullptr && call->how == ending::CLEARED) {
        tracker.calls.finish(key);
    }
}

void take_reset(x25_tracker& tracker, const journal& about, const frame& what, x25_key key) {
    x25_call* const call = standing_call(tracker, about, what, key);
    if (call == nullptr) {
        return;
    }
    ++call->resets;
    const bool told = state_of(tracker, key.link).is_x25;
    for (const bool from_router : {true, false}) {
        const standstill over = reset_x25_flow(call->flows[from_router ? 0 : 1], about, what.at);
        if (told) {
            tell_standstill(*call, about, over, from_router);
        }
    }
    if (told) {
        tell_reset(*call, about, what.at, reason_of(what));
    }
}

// --- Data

/// A data packet, or one for flow control. Returns the user data.
octets take_sequenced(x25_tracker& tracker, const journal& about, const frame& what, x25_key key,
                      const x25_header& header) {
    const octets user_data = header.data ? what.data.skip(header.length) : what.data.cut(0);
    x25_call* const call = standing_call(tracker, about, what, key);
    if (call == nullptr) {
        return user_data;
    }
    x25_flow& own = call->flows[what.sent ? 0 : 1];
    x25_flow& other = call->flows[what.sent ? 1 : 0];
    if (!about.has_sent) {
        own.packets += header.data ? 1 : 0;
        return user_data;
    }
    const auto tell = [&](const standstill& over) {
        if (state_of(tracker, key.link).is_x25) {
            tell_standstill(*call, about, over, !what.sent);
        }
    };
    tell(take_x25_acknowledgement(other, about, what.at, header.pr, header.mask));
    if (header.flow_control) {
        const bool ready = header.type != X25_RECEIVE_NOT_READY;
        call->interruptions += ready ? 0 : 1;
        tell(take_x25_readiness(other, about, what.at, ready));
        return user_data;
    }
    take_x25_data(own, about, what.at, header.ps, header.mask);
    state_of(tracker, key.link).is_x25 = state_of(tracker, key.link).is_x25 || own.in_order >= SURELY_IN_ORDER;
    const bool goes_on = own.more;
    own.more = header.more;
    return goes_on ? user_data.cut(0) : user_data;
}

// --- Restarts

void tell_no_confirmation(const x25_restart& restart, const journal& about) {
    const bool waited = restart.tries >= MANY_RESTARTS || elapsed(restart.first, about.now) >= RESTART_WAIT_MS;
    if (restart.confirmed || !waited || restart.lost != about.lost) {
        return;
    }
    const bool asked = restart.why.sent || !about.has_sent;
    text_buffer<32> times;
    if (restart.tries > 1) {
        print_to<", %s %d times">(times, asked ? "sent" : "received", restart.tries);
    }
    tell_trouble<"%s the X.25 RESTART%s">(about, restart.first, asked ? "no answer to" : "the router does not answer",
                                          times.text());
}

void confirm_restart(x25_tracker& tracker, x25_restart& restart, place at) {
    restart.confirmed = at;
    tracker.restarts.finish(restart.link);
}

void tell_restart(const x25_restart& restart, const journal& about) {
    if (restart.ended_calls == 0 && is_everyday_restart(restart.why)) {
        return;
    }
    text_buffer<200> reason;
    put_restart_reason(reason, restart.why);
    const char* const who = x25_actor(restart.why, about);
    text_buffer<64> lost;
    if (restart.ended_calls > 0) {
        print_to<", which broke off %s">(lost, count_text(restart.ended_calls, "call"));
    }
    tell_trouble<"X.25 was restarted%s%s%s: %s">(about, restart.first, *who == '\0' ? "" : " by ", who, lost.text(),
                                                 reason.text());
}

void take_restart(x25_tracker& tracker, const journal& about, const frame& what, int link) {
    x25_restart* const waiting = tracker.restarts.find(link);
    if (waiting != nullptr && waiting->why.sent == what.sent) {
        ++waiting->tries;
        waiting->last_try = what.at;
        return;
    }
    if (waiting != nullptr) {
        confirm_restart(tracker, *waiting, what.at);  // both sides at once: neither confirms
        return;
    }
    x25_restart restart{what.at, about.lost, link, reason_of(what), 1, what.at, std::nullopt, 0};
    restart.ended_calls = end_calls(tracker, about, what.at, link, ending::RESTARTED);
    tell_restart(restart, about);
    state_of(tracker, link).restarted = true;
    state_of(tracker, link).lost = about.lost;
    tracker.restarts.begin(link, *about.shared, restart);
}

// --- Packets

void tell_diagnostic(const journal& about, const frame& what) {
    const x25_reason why{0, what.data[3], what.sent};
    text_buffer<160> reason;
    put_diagnostic(reason, why);
    tell_trouble<"the network does not understand a packet (DIAGNOSTIC): %s">(about, what.at, reason.text());
}

/// Not a data packet, nor one for flow control.
void take_control(x25_tracker& tracker, const journal& about, const frame& what, x25_key key,
                  const x25_header& header) {
    switch (header.type) {
        case X25_CALL:
            take_call(tracker, about, what, key, header);
            break;
        case X25_CALL_ACCEPTED:
            take_call_accepted(tracker, about, what, key, header);
            break;
        case X25_CLEAR:
            take_clear(tracker, about, what, key);
            break;
        case X25_CLEAR_CONFIRMATION:
            take_clear_confirmation(tracker, key);
            break;
        case X25_RESET:
            take_reset(tracker, about, what, key);
            break;
        case X25_RESTART:
            take_restart(tracker, about, what, key.link);
            break;
        case X25_RESTART_CONFIRMATION:
            if (x25_restart* const waiting = tracker.restarts.find(key.link)) {
                confirm_restart(tracker, *waiting, what.at);
            }
            break;
        case X25_DIAGNOSTIC:
            tell_diagnostic(about, what);
            break;
        default:
            break;
    }
}

/// What is behind the network header of a circuit-switched data connection (ITU-T T.70).
octets take_t70(octets packet) { return packet.skip((packet[0] & 0x0F) + 1); }

void put_restart(text_sink& out, const x25_restart& restart, const journal& about) {
    const char* const who = x25_actor(restart.why, about);
    print_to<"restart%s%s: ">(out, *who == '\0' ? "" : " by ", who);
    put_restart_reason(out, restart.why);
    if (restart.tries > 1) {
        print_to<", sent %d times">(out, restart.tries);
    }
    if (restart.confirmed) {
        print_to<", confirmed after %s">(out, duration_text(elapsed(restart.first, *restart.confirmed)));
    } else {
        put(out, ", not confirmed");
    }
}

}  // namespace

octets take_lapb(x25_tracker& tracker, const journal& about, const frame& what) {
    tracker.seen = true;
    const lapb_news news = take_lapb_link(tracker.lapb, about, what);
    if (news.link_down) {
        take_x25_link_down(tracker, about, what, LAPB_LINK);
    }
    if (news.packet.within() < 3) {
        return what.data.cut(0);
    }
    return (news.packet[0] >> 4 & SEQUENCE_BITS) == 0 ? take_t70(news.packet)
                                                      : take_x25(tracker, about, what.with(news.packet), LAPB_LINK);
}

octets take_x25(x25_tracker& tracker, const journal& about, const frame& what, int link) {
    tracker.seen = true;
    const octets none = what.data.cut(0);
    const x25_header header = read_x25_header(what.data);
    const int sequence_numbers = header.format & SEQUENCE_BITS;
    if (what.data.length < header.length || sequence_numbers == 0 || sequence_numbers == SEQUENCE_BITS) {
        return none;
    }
    x25_tracker::link_state& state = state_of(tracker, link);
    state.is_x25 = state.is_x25 || link != LAPB_LINK || is_surely_x25(what.data, header);
    const x25_key key{link, header.channel};
    if (header.data || header.flow_control) {
        return take_sequenced(tracker, about, what, key, header);
    }
    if (state.is_x25) {
        take_control(tracker, about, what, key, header);
    }
    return none;
}

void take_x25_link_down(x25_tracker& tracker, const journal& about, const frame& what, int link) {
    if (x25_restart* const waiting = tracker.restarts.find(link)) {
        tell_no_confirmation(*waiting, about);
        tracker.restarts.finish(link);
    }
    const std::uint64_t ended = end_calls(tracker, about, what.at, link, ending::LINK_DOWN);
    if (ended > 0 && state_of(tracker, link).is_x25) {
        const char* const who = what.sent ? "the router" : "the other side";
        tell_trouble<"the data link was taken down%s%s: %s broken off">(
            about, what.at, about.has_sent ? " by " : "", about.has_sent ? who : "", count_text(ended, "X.25 call"));
    }
}

void finish_x25(x25_tracker& tracker, const journal& about) {
    finish_data_links(tracker.lapb.links, about);
    tracker.restarts.for_each_lasting([&](const x25_restart& restart) { tell_no_confirmation(restart, about); });
    tracker.calls.for_each_lasting([&](x25_call& call) {
        if (call.how == ending::LASTS && state_of(tracker, call.link).is_x25) {
            conclude_x25_call(call, about);
        }
    });
}

bool x25_was_seen(const x25_tracker& tracker) { return tracker.seen; }

void print_x25_section(const x25_tracker& tracker, const journal& about) {
    print_data_links(tracker.lapb.links, about);
    print_remembered(tracker.restarts,
                     [&](text_sink& out, const x25_restart& restart) { put_restart(out, restart, about); });
    print_remembered(tracker.calls, [&](text_sink& out, const x25_call& call) {
        if (state_of(tracker, call.link).is_x25) {
            put_x25_call(out, call, about);
        }
    });
}

}  // namespace ifwatch::reporting
