#include "read/report/call_text.h"

#include <algorithm>
#include <iterator>

#include "isdn/cause.h"
#include "isdn/information_element.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

constexpr std::uint32_t SETUP_WAIT_MS = 10'000;  // timer T303 twice, and then some

// Causes with their extension bit, as the elements have them.
constexpr int CAUSE_BUSY = 0x91;
constexpr int CAUSE_NOT_RESPONDING = 0x92;
constexpr int CAUSE_REJECTED = 0x95;
constexpr int CAUSE_INCOMPATIBLE = 0xD8;
constexpr int CAUSE_REJECTED_1TR6 = 0xBE;

// With these a call ends every day: hung up, engaged, nobody at home, somebody else took it.
constexpr int EVERYDAY_Q850[] = {NO_CAUSE, 0x87, 0x90, CAUSE_BUSY, 0x93, 0x9A, 0x9E, 0x9F};
constexpr int EVERYDAY_1TR6[] = {NO_CAUSE, 0xBA, 0xBB, 0xDA, 0xF2, 0xF3};

// What no subscriber says, but the exchange: 1TR6 has no location beside the cause.
constexpr int OF_NETWORK_1TR6[] = {0x83, 0x8A, 0x90, 0x91, 0xA0, 0xA1, 0xA2, 0xA3, 0xA5, 0xB5, 0xB8, 0xB9, 0xBD, 0xD9};

struct advice {
    int variant;
    int cause;
    const char* text;
};

constexpr const char* WRONG_NUMBER = "check the area code, and the digit for an outside line";
constexpr const char* NO_FREE_CHANNEL = "all B-channels are in use, here or in the network";
constexpr const char* WRONG_SERVICE = "data to a telephone, or a service that was not ordered";
constexpr const char* PROVIDER = "this is the provider's";

constexpr advice ADVICE[] = {
    {VARIANT_Q931, 0x81, WRONG_NUMBER},  {VARIANT_Q931, 0x82, WRONG_NUMBER},    {VARIANT_Q931, 0x83, WRONG_NUMBER},
    {VARIANT_Q931, 0x9C, WRONG_NUMBER},  {VARIANT_Q931, 0xA2, NO_FREE_CHANNEL}, {VARIANT_Q931, 0xAC, NO_FREE_CHANNEL},
    {VARIANT_Q931, 0xA6, PROVIDER},      {VARIANT_Q931, 0xA9, PROVIDER},        {VARIANT_Q931, 0xAA, PROVIDER},
    {VARIANT_Q931, 0xB2, WRONG_SERVICE}, {VARIANT_Q931, 0xB9, WRONG_SERVICE},   {VARIANT_Q931, 0xBA, WRONG_SERVICE},
    {VARIANT_Q931, 0xC1, WRONG_SERVICE}, {VARIANT_Q931, 0xD8, WRONG_SERVICE},   {VARIANT_1TR6, 0x8A, NO_FREE_CHANNEL},
    {VARIANT_1TR6, 0xB5, WRONG_NUMBER},  {VARIANT_1TR6, 0x83, WRONG_SERVICE},   {VARIANT_1TR6, 0xD9, PROVIDER},
};

const char* advice_for(int variant, int cause) {
    const auto* const found =
        std::ranges::find_if(ADVICE, [&](const advice& row) { return row.variant == variant && row.cause == cause; });
    return found != std::end(ADVICE) ? found->text : nullptr;
}

bool is_everyday(const call_record& call) {
    const int cause = call.told.cause;
    const bool listed = call.told.variant == VARIANT_1TR6
                            ? std::ranges::find(EVERYDAY_1TR6, cause) != std::end(EVERYDAY_1TR6)
                            : std::ranges::find(EVERYDAY_Q850, cause) != std::end(EVERYDAY_Q850);
    const bool refused = cause == CAUSE_REJECTED || cause == CAUSE_INCOMPATIBLE ||
                         (call.told.variant == VARIANT_1TR6 && cause == CAUSE_REJECTED_1TR6);
    if (call.alerting && call.told.variant == VARIANT_Q931 && cause == CAUSE_NOT_RESPONDING) {
        return true;  // it rang, and nobody came
    }
    // What is offered to everybody on the line is refused by those that it is not meant for.
    return listed || (refused && call.to_all);
}

void put_cause(text_sink& out, const call_record& call) {
    const int cause = call.told.cause;
    if (const table_text name = cause_name(call.told.variant, cause)) {
        print_to<"%s (cause %d)">(out, name, cause & 0x7F);
    } else {
        print_to<"cause %d">(out, cause & 0x7F);
    }
}

/// Who has cleared a call. Where a capture has no directions, only which side of the call it was.
const char* clearer(const call_record& call, const journal& about) {
    constexpr int location_user = 0;
    constexpr int location_remote_private = 5;
    if (!about.has_sent) {
        return call.cleared_by_origin ? "the caller" : "the called side";
    }
    if (call.cleared_by_router) {
        return "the router";
    }
    const int location = call.told.location;
    const bool by_network = call.told.variant == VARIANT_1TR6
                                ? std::ranges::find(OF_NETWORK_1TR6, call.told.cause) != std::end(OF_NETWORK_1TR6)
                                : location != location_user && location != location_remote_private;
    return by_network ? "the network" : "the other side";
}

void put_number(text_sink& out, const short_text& number, const short_text& subaddress) {
    if (number.empty() && subaddress.empty()) {
        put(out, "a number not told");
        return;
    }
    number.put_to(out);
    if (!subaddress.empty()) {
        put(out, number.empty() ? "subaddress " : " subaddress ");
        subaddress.put_to(out);
    }
}

void put_service(text_sink& out, const call_message& told) {
    for (const table_text part : {told.bearer, told.high_layer, told.layer2}) {
        if (part) {
            const std::string_view padded = part.view();
            print_to<", %s">(out, padded.substr(0, padded.find_last_not_of(' ') + 1));
        }
    }
    if (told.service != NO_SERVICE) {
        print_to<", service %02X %02X">(out, told.service >> 8, told.service & 0xFF);
    }
    if (told.channel > 0) {
        print_to<", B%d">(out, told.channel);
    }
}

void put_direction(text_sink& out, const call_record& call, const journal& about) {
    const char* const direction = call.sent ? "call out" : "call in";
    print_to<"%s%s">(out, about.has_sent ? direction : "call", call.began_before ? ", began before" : "");
}

const char* clearing_word(const call_record& call) {
    if (call.connected || call.began_before) {
        return "cleared";
    }
    return call.cleared_by_origin ? "given up" : "refused";
}

void put_clearing(text_sink& out, const call_record& call, const journal& about) {
    if (!call.cleared) {
        const char* const lasts = call.replaced ? "no end seen" : "not over";
        put(out, call.suspended ? "suspended" : lasts);
        return;
    }
    if (call.restarted) {
        put(out, "ended by RESTART");
        return;
    }
    print_to<"%s by %s">(out, clearing_word(call), clearer(call, about));
    if (call.told.cause != NO_CAUSE) {
        put(out, ": ");
        put_cause(out, call);
    }
}

/// What became of the call.
void put_course(text_sink& out, const call_record& call, const journal& about) {
    put(out, ": ");
    const bool waited = elapsed(call.first, about.now) >= SETUP_WAIT_MS;
    if (!call.answered && !call.cleared && waited) {
        put(out, call.to_all ? "nobody here takes it" : "no answer");
        put(out, call.lost != about.lost ? " seen, records were lost" : "");
        return;
    }
    if (call.alerting) {
        print_to<"alerting after %s, ">(out, duration_text(elapsed(call.first, *call.alerting)));
    }
    if (call.connected) {
        print_to<"connected after %s, ">(out, duration_text(elapsed(call.first, *call.connected)));
    }
    if (call.connected && call.cleared) {
        print_to<"%s long, ">(out, duration_text(elapsed(*call.connected, *call.cleared)));
    }
    put_clearing(out, call, about);
}

using number_buffer = text_buffer<320>;

void tell_no_answer(const call_record& call, const journal& about) {
    const char* const who =
        call.sent || !about.has_sent ? "no answer to SETUP" : "the router does not answer the SETUP";
    number_buffer number;
    put_number(number, call.told.called, call.told.called_subaddress);
    if (call.setups > 1) {
        tell_trouble<"%s for %s, sent %d times in %s">(about, call.first, who, number.text(), call.setups,
                                                       duration_text(elapsed(call.first, call.last_setup)));
    } else {
        tell_trouble<"%s for %s">(about, call.first, who, number.text());
    }
}

void tell_cause(const call_record& call, const journal& about) {
    if (!about.troubles->wants_words()) {
        return;
    }
    const char* const direction = call.sent || !about.has_sent ? "to" : "for";
    number_buffer number;
    text_buffer<160> cause;
    put_cause(cause, call);
    if (call.began_before) {
        tell_trouble<"a call was broken off by %s: %s">(about, *call.cleared, clearer(call, about), cause.text());
        return;
    }
    put_number(number, call.told.called, call.told.called_subaddress);
    if (call.connected) {
        tell_trouble<"the call %s %s was broken off by %s: %s">(about, *call.cleared, direction, number.text(),
                                                                clearer(call, about), cause.text());
        return;
    }
    const char* const hint = advice_for(call.told.variant, call.told.cause);
    tell_trouble<"the call %s %s was %s by %s: %s%s%s">(about, call.first, direction, number.text(),
                                                        clearing_word(call), clearer(call, about), cause.text(),
                                                        hint != nullptr ? ": " : "", hint != nullptr ? hint : "");
}

}  // namespace

void put_call(text_sink& out, const call_record& call, const journal& about) {
    const call_message& told = call.told;
    put_direction(out, call, about);
    if (!call.began_before) {
        put(out, " to ");
        put_number(out, told.called, told.called_subaddress);
    }
    if (!told.calling.empty() || !told.calling_subaddress.empty()) {
        put(out, " from ");
        put_number(out, told.calling, told.calling_subaddress);
    }
    put_service(out, told);
    put_course(out, call, about);
}

void conclude_call(const call_record& call, const journal& about) {
    const bool waited = call.cleared || elapsed(call.first, about.now) >= SETUP_WAIT_MS;
    if (!call.answered && !call.to_all && waited && call.lost == about.lost) {
        tell_no_answer(call, about);
    } else if (call.cleared && !is_everyday(call)) {
        tell_cause(call, about);
    }
}

}  // namespace ifwatch::reporting
