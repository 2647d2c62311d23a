#include "isdn/q931_message.h"

#include "base/print.h"
#include "isdn/call_reference.h"
#include "isdn/information_element.h"
#include "isdn/message_type.h"
#include "isdn/network_codesets.h"
#include "isdn/tei.h"

namespace ifwatch {

namespace {

struct message_family {
    int discriminator;
    int variant;
    int (*dump_type)(octets message);
};

constexpr message_family MESSAGE_FAMILIES[] = {
    {PD_Q931, VARIANT_Q931, dump_q931_type},
    {PD_MANAGEMENT, VARIANT_Q931, dump_q931_type},
    {PD_1TR6_CONTROL, VARIANT_1TR6, dump_1tr6_control_type},
    {PD_1TR6_CALL, VARIANT_1TR6, dump_1tr6_call_type},
};

void skip_element(int /*variant*/, octets /*element*/) {}

struct codeset_decoder {
    int codeset;
    void (*dump)(int variant, octets element);
};

constexpr codeset_decoder CODESET_DECODERS[] = {
    {0, dump_ie_codeset0},
    {5, dump_ie_codeset5},
    {6, dump_ie_codeset6},
    {7, skip_element},
};

/// Where the walk stands in the codesets (ITU-T Q.931 clause 4.5.2).
struct codeset_state {
    int current = 0;
    int previous = 0;
    bool locked = true;  // false: the current codeset holds for the next element only
};

/// TEI management shares its discriminator with management messages; it is known by its length of five octets, or by
/// what would be a call reference of more than two.
bool is_tei_management(int discriminator, octets rest) {
    return discriminator == PD_MANAGEMENT && (rest[0] > 2 || rest.length < 5);
}

/// Prints the start of the message's line and returns what stands behind the call reference.
octets dump_call_reference(int discriminator, octets rest) {
    const int length = rest[0];
    if (length == 0) {
        print<"\t    PD=%02x CR=dummy  ">(discriminator);
        // The length octet of the dummy call reference is not counted off.
        return rest.at(1, rest.length);
    }
    const bool to_origin = (rest[1] & 0x80) != 0;
    rest.set(1, rest[1] & 0x7F);
    print<"\t    PD=%02x %s CR=">(discriminator, to_origin ? "Dest" : "Orig");
    for (const std::uint8_t octet : rest.run(1, length)) {
        print<"%02x">(octet);
    }
    print<"  ">();
    return rest.skip(1 + length);
}

void dump_shift(int identifier, codeset_state& codesets) {
    codesets.previous = codesets.current;
    codesets.current = identifier & 7;
    codesets.locked = (identifier & 0x08) == 0;
    print<"\t\tIE-Element  : %s Codeshift (%1X to %1X) \n">(codesets.locked ? "Fixed" : "Unfixed", codesets.previous,
                                                            codesets.current);
}

void dump_in_codeset(int codeset, int variant, octets element) {
    for (const codeset_decoder& decoder : CODESET_DECODERS) {
        if (decoder.codeset == codeset) {
            decoder.dump(variant, element);
            return;
        }
    }
    print<"\t\tIE-Element  : 0x%x in codeset %d\n">(element[0], codeset);
}

/// Prints the element that `rest` begins with and returns its length, or 0 when it is longer than what remains.
int dump_ie(int variant, octets rest, codeset_state& codesets) {
    const int identifier = rest[0];
    const int length = (identifier & 0x80) != 0 ? 1 : rest[1] + 2;
    if (length > rest.length) {
        return 0;
    }
    if ((identifier & 0xF0) == 0x90) {
        dump_shift(identifier, codesets);
        return length;
    }
    dump_in_codeset(codesets.current, variant, rest.at(0, length));
    if (!codesets.locked) {
        codesets.current = codesets.previous;
        codesets.locked = true;
    }
    return length;
}

void dump_elements(int variant, octets rest) {
    codeset_state codesets;
    while (rest.within() > 0) {
        const int length = dump_ie(variant, rest, codesets);
        if (length == 0) {
            return;
        }
        rest = rest.skip(length);
    }
}

}  // namespace

void dump_layer3(int variant, octets message) {
    const int discriminator = message[0];
    octets rest = message.skip(1);
    if (is_tei_management(discriminator, rest)) {
        print<"\t    ">();
        dump_tei_management(rest);
        return;
    }
    for (const message_family& family : MESSAGE_FAMILIES) {
        if (family.discriminator == discriminator) {
            rest = dump_call_reference(discriminator, rest);
            rest = rest.skip(family.dump_type(rest));
            variant = family.variant;
            break;
        }
    }
    dump_elements(variant, rest);
}

}  // namespace ifwatch
