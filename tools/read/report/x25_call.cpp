#include "read/report/x25_call.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "x25/x25_cause.h"

namespace ifwatch::reporting {

namespace {

constexpr std::uint32_t ANSWER_WAIT_MS = 20'000;

constexpr int DTE = 0x80;  // of a cause: it is the other DTE's own

// What follows on a line that comes up, or a DTE does without a reason.
constexpr int EVERYDAY_RESETS[] = {0, 9, 15};
constexpr int EVERYDAY_RESTARTS[] = {0, 7};

struct advice {
    int code;
    const char* text;
};

constexpr advice CAUSE_ADVICE[] = {
    {1, "all channels of the other end are in use"},
    {3, "a facility was asked for that is not subscribed: packet size, window, closed user group"},
    {9, "the line at the other end is down"},
    {11, "the closed user group, or calls are barred at one end"},
    {13, "check the address"},
    {25, "the other end does not pay for the call"},
    {41, "the other end takes no fast select"},
};

constexpr advice DIAGNOSTIC_ADVICE[] = {
    {67, "check the address"},
    {68, "check the own address"},
    {71, "all logical channels of the line are in use"},
    {121, "check the address"},
};

const char* advice_in(std::span<const advice> table, int code) {
    const auto found = std::ranges::find(table, code, &advice::code);
    return found != table.end() ? found->text : nullptr;
}

const char* advice_for(const x25_reason& why) {
    const char* const by_diagnostic = advice_in(DIAGNOSTIC_ADVICE, why.diagnostic);
    return by_diagnostic != nullptr ? by_diagnostic : advice_in(CAUSE_ADVICE, why.cause);
}

bool is_of_dte(const x25_reason& why) { return why.cause == 0 || (why.cause & DTE) != 0; }

/// A diagnostic code that says what was wrong; those that have no name are the DTE's own affair.
bool tells_fault(const x25_reason& why) { return !x25_diagnostic_name(why.diagnostic).view().empty(); }

void put_reason(text_sink& out, const x25_reason& why, std::span<const named_value> causes) {
    const std::string_view cause = x25_cause_name(why.cause, causes).view();
    print_to<"%s%scause %d%s">(out, cause, cause.empty() ? "" : " (", why.cause, cause.empty() ? "" : ")");
    if (why.diagnostic != 0) {
        put(out, ", ");
        put_diagnostic(out, why);
    }
}

void put_address(text_sink& out, const short_text& address) {
    if (address.empty()) {
        put(out, "an address not told");
        return;
    }
    address.put_to(out);
}

using name_buffer = text_buffer<160>;

/// "the X.25 call to 51000310", or what else it is known by.
void put_name(text_sink& out, const x25_call& call, const journal& about) {
    if (call.permanent) {
        print_to<"the permanent circuit on channel %d">(out, call.channel);
    } else if (call.called.empty()) {
        print_to<"the X.25 call on channel %d">(out, call.channel);
    } else {
        print_to<"the X.25 call %s ">(out, call.sent || !about.has_sent ? "to" : "for");
        call.called.put_to(out);
    }
}

bool was_answered(const x25_call& call) { return call.connected || call.began_before; }

/// Before it was connected a call is refused by the side that did not begin it; with fast select that is an answer.
const char* clearing_word(const x25_call& call, const journal& about) {
    if (was_answered(call)) {
        return "cleared";
    }
    if (call.fast_select && is_of_dte(call.clearing)) {
        return "fast select, cleared";
    }
    return about.has_sent && call.clearing.sent == call.sent ? "given up" : "refused";
}

bool is_everyday_clearing(const x25_call& call, const journal& about) {
    if (!is_of_dte(call.clearing) || tells_fault(call.clearing)) {
        return false;
    }
    const bool given_up = about.has_sent && call.clearing.sent == call.sent;
    return was_answered(call) || call.fast_select || given_up;
}

void tell_clearing(const x25_call& call, const journal& about) {
    if (!about.troubles->wants_words()) {
        return;
    }
    name_buffer name;
    put_name(name, call, about);
    text_buffer<160> reason;
    put_reason(reason, call.clearing, X25_CLEARING_CAUSES);
    const char* const who = x25_actor(call.clearing, about);
    const char* const by = *who == '\0' ? "" : " by ";
    if (was_answered(call)) {
        tell_trouble<"%s was broken off%s%s: %s">(about, *call.ended, name.text(), by, who, reason.text());
        return;
    }
    const char* const hint = advice_for(call.clearing);
    tell_trouble<"%s was %s%s%s: %s%s%s">(about, call.first, name.text(), clearing_word(call, about), by, who,
                                          reason.text(), hint != nullptr ? ": " : "", hint != nullptr ? hint : "");
}

void put_course(text_sink& out, const x25_call& call, const journal& about) {
    using enum x25_call::ending;
    if (call.connected) {
        print_to<"connected after %s, ">(out, duration_text(elapsed(call.first, *call.connected)));
    }
    if (call.connected && call.ended) {
        print_to<"%s long, ">(out, duration_text(elapsed(*call.connected, *call.ended)));
    }
    const std::uint64_t sent = call.flows[0].packets;
    const std::uint64_t received = call.flows[1].packets;
    if (sent + received > 0 && about.has_sent) {
        print_to<"%s sent, %lu received, ">(out, count_text(sent, "packet"), received);
    } else if (sent + received > 0) {
        print_to<"%s, ">(out, count_text(sent + received, "packet"));
    }
    if (call.resets > 0) {
        print_to<"reset %s, ">(out, count_text(call.resets, "time"));
    }
    if (call.interruptions > 0) {
        print_to<"%lu RNR, ">(out, call.interruptions);
    }
    switch (call.how) {
        case LASTS:
            put(out,
                !was_answered(call) && elapsed(call.first, about.now) >= ANSWER_WAIT_MS ? "no answer" : "not over");
            break;
        case CLEARED: {
            const char* const who = x25_actor(call.clearing, about);
            print_to<"%s%s%s: ">(out, clearing_word(call, about), *who == '\0' ? "" : " by ", who);
            put_reason(out, call.clearing, X25_CLEARING_CAUSES);
            break;
        }
        case RESTARTED:
            put(out, "ended by a restart");
            break;
        case LINK_DOWN:
            put(out, "ended with the link");
            break;
        case REPLACED:
            put(out, "its end was not seen");
            break;
    }
}

}  // namespace

void put_diagnostic(text_sink& out, const x25_reason& why) {
    const std::string_view name = x25_diagnostic_name(why.diagnostic).view();
    print_to<"%s%sdiagnostic %d%s">(out, name, name.empty() ? "" : " (", why.diagnostic, name.empty() ? "" : ")");
}

const char* x25_actor(const x25_reason& why, const journal& about) {
    if (!is_of_dte(why) && !why.sent) {
        return "the network";
    }
    if (!about.has_sent) {
        return "";
    }
    return why.sent ? "the router" : "the other side";
}

void put_restart_reason(text_sink& out, const x25_reason& why) { put_reason(out, why, X25_RESTARTING_CAUSES); }

bool is_everyday_restart(const x25_reason& why) {
    return (is_of_dte(why) || std::ranges::find(EVERYDAY_RESTARTS, why.cause) != std::end(EVERYDAY_RESTARTS)) &&
           !tells_fault(why);
}

void tell_reset(const x25_call& call, const journal& about, place at, const x25_reason& why) {
    const bool everyday = is_of_dte(why) || std::ranges::find(EVERYDAY_RESETS, why.cause) != std::end(EVERYDAY_RESETS);
    if ((everyday && !tells_fault(why)) || !about.troubles->wants_words()) {
        return;
    }
    name_buffer name;
    put_name(name, call, about);
    text_buffer<160> reason;
    put_reason(reason, why, X25_RESETTING_CAUSES);
    const char* const who = x25_actor(why, about);
    tell_trouble<"%s was reset%s%s: %s">(about, at, name.text(), *who == '\0' ? "" : " by ", who, reason.text());
}

void tell_standstill(const x25_call& call, const journal& about, const standstill& over, bool from_router) {
    if (over.length_ms == 0) {
        return;
    }
    name_buffer name;
    put_name(name, call, about);
    const char* const who = from_router ? "the other side" : "the router";
    const std::string length = duration_text(over.length_ms);
    if (over.not_ready) {
        tell_trouble<"%s stood still for %s: %s was not ready to receive (RNR)">(about, over.first, name.text(), length,
                                                                                 who);
    } else {
        tell_trouble<"%s stood still for %s: %s acknowledged nothing, the window of %d was full">(
            about, over.first, name.text(), length, who, over.window);
    }
}

void put_x25_call(text_sink& out, const x25_call& call, const journal& about) {
    if (call.permanent) {
        print_to<"permanent circuit, channel %d: ">(out, call.channel);
    } else {
        const char* const direction = call.sent ? "call out" : "call in";
        const bool directed = about.has_sent && !(call.began_before && call.called.empty());
        print_to<"%s%s">(out, directed ? direction : "call", call.began_before ? ", began before" : "");
        if (!call.began_before) {
            put(out, " to ");
            put_address(out, call.called);
        }
        if (!call.calling.empty()) {
            put(out, " from ");
            call.calling.put_to(out);
        }
        print_to<", channel %d: ">(out, call.channel);
    }
    put_course(out, call, about);
}

void conclude_x25_call(x25_call& call, const journal& about) {
    const place end = call.ended ? *call.ended : about.now;
    tell_standstill(call, about, reset_x25_flow(call.flows[0], about, end), true);
    tell_standstill(call, about, reset_x25_flow(call.flows[1], about, end), false);
    if (call.how == x25_call::ending::CLEARED && !is_everyday_clearing(call, about)) {
        tell_clearing(call, about);
    } else if (call.how == x25_call::ending::LASTS && !was_answered(call) && call.lost == about.lost &&
               elapsed(call.first, end) >= ANSWER_WAIT_MS) {
        name_buffer name;
        put_name(name, call, about);
        tell_trouble<"no answer to %s">(about, call.first, name.text());
    }
}

}  // namespace ifwatch::reporting
