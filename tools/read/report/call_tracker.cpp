#include "read/report/call_tracker.h"

#include <bit>
#include <string>

#include "read/report/call_text.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

/// Takes over what a message says, where it says something.
void merge(call_record& call, const call_message& message) {
    call_message& told = call.told;
    const auto take_text = [](short_text& to, const short_text& from) {
        if (!from.empty()) {
            to = from;
        }
    };
    take_text(told.calling, message.calling);
    take_text(told.calling_subaddress, message.calling_subaddress);
    take_text(told.called_subaddress, message.called_subaddress);
    told.bearer = message.bearer ? message.bearer : told.bearer;
    told.high_layer = message.high_layer ? message.high_layer : told.high_layer;
    told.layer2 = message.layer2 ? message.layer2 : told.layer2;
    told.channel = message.channel != NO_CHANNEL ? message.channel : told.channel;
    told.service = message.service != NO_SERVICE ? message.service : told.service;
    // Digits that are dialled later come one by one; those of a call that may be connected are no number, but a PIN.
    if (!message.from_destination && !call.connected && !call.began_before) {
        told.called.append(message.called);
    }
}

void note_channel(call_tracker& tracker, const call_key& key, const call_message& told) {
    if (told.channel > 0 && told.channel < static_cast<int>(call_tracker::CHANNELS)) {
        tracker.on_channel[static_cast<std::size_t>(told.channel)] = key;
    }
}

/// A channel carries one call at a time: the last that was to have it, unless it went to another one. nullptr: none.
call_record* call_on_channel(call_tracker& tracker, std::size_t channel) {
    call_record* const call = tracker.calls.find(tracker.on_channel[channel]);
    return call != nullptr && call->told.channel == static_cast<int>(channel) ? call : nullptr;
}

void begin_call(call_tracker& tracker, const journal& about, const frame& what, const call_carrier& carrier,
                const call_key& key, const call_message& message) {
    call_record call;
    call.first = what.at;
    call.lost = about.lost;
    call.sent = what.sent != message.from_destination;
    call.began_before = message.type != MESSAGE_SETUP;
    call.to_all = carrier.to_all;
    call.answered = call.began_before;
    call.setups = call.began_before ? 0 : 1;
    call.last_setup = what.at;
    call.told = message;
    call.told.cause = NO_CAUSE;
    if (call.began_before) {
        call.told.called.clear();
    }
    if (tracker.count++ == 0) {
        tracker.first = what.at;
    }
    tracker.calls.begin(key, *about.shared, call);
    note_channel(tracker, key, call.told);
}

/// A call that is cleared for one of the terminals that it was offered to goes on for the others, and one that was
/// answered by one of them is none of theirs.
bool is_of_other_terminal(const call_record& call, const call_carrier& carrier) {
    return call.to_all && call.connected && call.connected_link != carrier.link;
}

void take_clearing(call_record& call, const frame& what, const call_message& message) {
    if (!call.cleared) {
        call.cleared = what.at;
        call.cleared_by_router = what.sent;
        call.cleared_by_origin = !message.from_destination;
        call.told.cause = NO_CAUSE;
    }
    if (call.told.cause == NO_CAUSE) {
        call.told.cause = message.cause;
        call.told.location = message.location;
    }
}

void revive(call_record& call) {
    call.cleared.reset();
    call.told.cause = NO_CAUSE;
}

void take_progress(call_tracker& tracker, call_record& call, const frame& what, const call_message& message,
                   const call_carrier& carrier) {
    const bool goes_on = message.from_destination && !call.connected;
    if (goes_on && call.to_all) {
        revive(call);
    }
    if (message.type == MESSAGE_ALERT && goes_on && !call.alerting) {
        call.alerting = what.at;
    } else if (message.type == MESSAGE_CONNECT && goes_on) {
        call.connected = what.at;
        call.connected_link = carrier.link;
        ++tracker.connected;
    }
}

bool is_clearing(int type) {
    return type == MESSAGE_DISCONNECT || type == MESSAGE_RELEASE || type == MESSAGE_RELEASE_COMPLETE;
}

/// Not the SETUP that began it.
void take_message(call_tracker& tracker, const journal& about, const frame& what, const call_carrier& carrier,
                  const call_key& key, call_record& call, const call_message& message) {
    call.answered = call.answered || message.from_destination;
    if (is_of_other_terminal(call, carrier)) {
        return;
    }
    merge(call, message);
    note_channel(tracker, key, message);
    if (message.type == MESSAGE_SUSPEND_ACKNOWLEDGE) {
        call.suspended = true;
        tracker.calls.finish(key);
        return;
    }
    if (!is_clearing(message.type)) {
        take_progress(tracker, call, what, message, carrier);
        return;
    }
    take_clearing(call, what, message);
    const bool goes_on = call.to_all && !call.connected;
    if (message.type == MESSAGE_RELEASE_COMPLETE && !goes_on) {
        conclude_call(call, about);
        tracker.calls.finish(key);
    }
}

/// Whether a message tells of a call whose SETUP was not seen. One that is released may be over already for everybody
/// but this terminal; a facility or a status needs no call.
bool tells_of_call(const call_tracker& tracker, const call_key& key, int type) {
    const bool last_word = type == MESSAGE_RELEASE || type == MESSAGE_RELEASE_COMPLETE;
    return type <= LAST_MESSAGE_WITHIN || type == MESSAGE_DISCONNECT || (last_word && !tracker.calls.ended_lately(key));
}

/// A message of a call that is not known yet, or the SETUP of a new one.
void take_first_message(call_tracker& tracker, const journal& about, const frame& what, const call_carrier& carrier,
                        const call_key& key, const call_message& message) {
    if (!tells_of_call(tracker, key, message.type)) {
        return;
    }
    if (call_record* const before = tracker.calls.find(key)) {
        before->replaced = true;
        conclude_call(*before, about);
    }
    begin_call(tracker, about, what, carrier, key, message);
    if (message.type != MESSAGE_SETUP) {
        take_message(tracker, about, what, carrier, key, *tracker.calls.find(key), message);
    }
}

// --- RESTART

/// Returns whether there was anything left to clear.
bool restart_call(call_record& call, const journal& about, place at) {
    const bool lasted = !call.cleared;
    if (lasted) {
        call.cleared = at;
        call.restarted = true;
    } else {
        conclude_call(call, about);
    }
    return lasted;
}

/// Returns how many calls there were to clear.
std::uint64_t restart_channel(call_tracker& tracker, const journal& about, place at, std::size_t channel) {
    call_record* const call = call_on_channel(tracker, channel);
    if (call == nullptr) {
        return 0;
    }
    const bool lasted = restart_call(*call, about, at);
    tracker.calls.finish(tracker.on_channel[channel]);
    return lasted ? 1 : 0;
}

std::string channels_text(std::uint32_t channels) {
    if (channels == ALL_CHANNELS) {
        return "the line was";
    }
    text_buffer<16> text;
    print_to<"B%d was">(text, std::countr_zero(channels));
    return std::has_single_bit(channels) ? std::string(text.text()) : "channels were";
}

/// What a RESTART clears is over, and so it is at its acknowledgement, where the RESTART itself was not seen.
void take_restart(call_tracker& tracker, const journal& about, const frame& what, const call_message& message) {
    std::uint64_t broken_off = 0;
    if (message.restarted == ALL_CHANNELS) {
        tracker.calls.finish_each([&](call_record& call) { broken_off += restart_call(call, about, what.at) ? 1 : 0; });
    } else {
        for (std::uint32_t left = message.restarted; left != 0; left &= left - 1) {  // the lowest channel goes
            broken_off += restart_channel(tracker, about, what.at, static_cast<std::size_t>(std::countr_zero(left)));
        }
    }
    if (broken_off > 0) {
        const bool by_router = what.sent == (message.type == MESSAGE_RESTART);
        const char* const who = by_router ? " by the router" : " by the other side";
        tell_trouble<"%s restarted%s (RESTART), which broke off %s">(about, what.at, channels_text(message.restarted),
                                                                     about.has_sent ? who : "",
                                                                     count_text(broken_off, "call"));
    }
}

}  // namespace

bool take_call_message(call_tracker& tracker, const journal& about, const frame& what, const call_carrier& carrier) {
    const call_message message = read_call_message(what.data);
    if (message.restarted != 0 && !message.of_call) {
        take_restart(tracker, about, what, message);
        return true;
    }
    if (!message.of_call) {
        return false;
    }
    const bool by_user = carrier.from_user != message.from_destination;
    // A call that comes from the network may be offered to several terminals: it is not of one link.
    const call_key key{by_user || carrier.port != 0 ? carrier.link : 0, carrier.port, message.reference,
                       by_user ? 1 : 0};
    call_record* const call = tracker.calls.find(key);
    const bool is_setup = message.type == MESSAGE_SETUP && !message.from_destination;
    if (call != nullptr && is_setup && !call->answered && !call->cleared) {
        ++call->setups;
        call->last_setup = what.at;
    } else if (call != nullptr && !is_setup) {
        take_message(tracker, about, what, carrier, key, *call, message);
    } else {
        take_first_message(tracker, about, what, carrier, key, message);
    }
    return true;
}

void take_line_loss(call_tracker& tracker, const journal& about) {
    std::uint64_t connected = 0;
    for (std::size_t channel = 1; channel < call_tracker::CHANNELS; ++channel) {
        const call_record* const call = call_on_channel(tracker, channel);
        const bool stands = call != nullptr && call->connected && !call->cleared;
        connected += stands && call->lost == about.lost ? 1 : 0;
    }
    if (connected > 0) {
        tell_trouble<"layer 1 went down in the middle of %s">(about, about.now, count_text(connected, "call"));
    }
}

void finish_calls(call_tracker& tracker, const journal& about) {
    tracker.calls.for_each_lasting([&](const call_record& call) { conclude_call(call, about); });
}

void print_calls(const call_tracker& tracker, const journal& about) {
    section rows;
    if (tracker.count > section::MOST_ROWS) {
        print_row<"%s, %lu of them connected">(rows, tracker.first, count_text(tracker.count, "call"),
                                               tracker.connected);
    }
    print_remembered(
        tracker.calls, [&](text_sink& out, const call_record& call) { put_call(out, call, about); }, rows);
}

}  // namespace ifwatch::reporting
