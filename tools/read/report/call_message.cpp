#include "read/report/call_message.h"

#include <array>

#include "base/number_text.h"
#include "isdn/bearer_capability.h"
#include "isdn/call_reference.h"
#include "isdn/cause.h"
#include "isdn/high_layer.h"
#include "isdn/information_element.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

constexpr int ELEMENT_BEARER = 0x04;
constexpr int ELEMENT_CAUSE = 0x08;
constexpr int ELEMENT_CHANNEL = 0x18;
constexpr int ELEMENT_KEYPAD = 0x2C;
constexpr int ELEMENT_CALLING = 0x6C;
constexpr int ELEMENT_CALLING_SUBADDRESS = 0x6D;
constexpr int ELEMENT_CALLED = 0x70;
constexpr int ELEMENT_CALLED_SUBADDRESS = 0x71;
constexpr int ELEMENT_RESTART = 0x79;
constexpr int ELEMENT_LOW_LAYER = 0x7C;
constexpr int ELEMENT_HIGH_LAYER = 0x7D;

constexpr int SINGLE_OCTET = 0x80;
constexpr int SHIFT = 0x90;
constexpr int NON_LOCKING = 0x08;
constexpr int LAST_OF_GROUP = 0x80;
constexpr int RESTART_CLASS = 7;  // 0: only the channels that are indicated

bool is_restart(int type) { return type == MESSAGE_RESTART || type == MESSAGE_RESTART_ACKNOWLEDGE; }

octets behind(octets element, int offset) { return element.at(offset, element.length - offset); }

/// The digits of a number, behind the octets of type, presentation and reason.
octets number(octets element) {
    int offset = 2;
    while (offset < element.length && (element[offset] & LAST_OF_GROUP) == 0) {
        ++offset;
    }
    return behind(element, offset + 1);
}

/// A subaddress: an NSAP as characters, any other as hexadecimal digits.
void read_subaddress(octets element, short_text& to) {
    constexpr int nsap = 0;
    if ((element[2] >> 4 & 7) == nsap) {
        to.append(behind(element, 3));
        return;
    }
    for (const std::uint8_t octet : element.run(3, element.length - 3)) {
        const char* const digits = hex_digits(false);
        std::array<std::uint8_t, 2> pair{static_cast<std::uint8_t>(digits[octet >> 4]),
                                         static_cast<std::uint8_t>(digits[octet & 0x0F])};
        to.append(octets_of(pair));
    }
}

// --- Channels (ITU-T Q.931 clause 4.5.13)

constexpr int CHANNEL_SELECTION = 3;
constexpr int ANY_CHANNEL = 3;
constexpr int PRIMARY_RATE = 0x20;

/// The numbers of channels in an element of a primary rate interface; nothing where it has a map, or none.
octets channel_numbers(octets element) {
    constexpr int explicit_interface = 0x40;
    constexpr int as_indicated = 1;
    constexpr int channel_map = 0x10;
    int offset = 3;
    if ((element[2] & explicit_interface) != 0) {
        while (offset < element.length && (element[offset] & LAST_OF_GROUP) == 0) {
            ++offset;
        }
        ++offset;
    }
    const bool has_numbers = (element[2] & CHANNEL_SELECTION) == as_indicated && offset + 1 < element.length &&
                             (element[offset] & channel_map) == 0;
    return has_numbers ? behind(element, offset + 1) : element.cut(0);
}

/// The B-channel that the element selects, 0: none, as far as it tells one.
int selected_channel(octets element) {
    const int selection = element[2] & CHANNEL_SELECTION;
    if ((element[2] & PRIMARY_RATE) == 0) {
        return selection == ANY_CHANNEL ? NO_CHANNEL : selection;
    }
    const octets numbers = channel_numbers(element);
    return numbers.length > 0 ? numbers[0] & 0x7F : NO_CHANNEL;
}

/// The B-channels that the element of a RESTART indicates, a bit each.
std::uint32_t indicated_channels(octets element) {
    constexpr int bits = 32;
    const int selection = element[2] & CHANNEL_SELECTION;
    if ((element[2] & PRIMARY_RATE) == 0) {
        return selection == ANY_CHANNEL ? 0 : 1U << selection;
    }
    std::uint32_t channels = 0;
    const octets numbers = channel_numbers(element);
    for (const std::uint8_t octet : numbers.run(0, numbers.length)) {
        const int channel = octet & 0x7F;
        channels |= channel < bits ? 1U << channel : 0;
    }
    return channels;
}

void read_element(octets element, call_message& message) {
    switch (element[0]) {
        case ELEMENT_BEARER:
            message.bearer = information_capability_name(element);
            break;
        case ELEMENT_CAUSE:
            message.cause = cause_value(message.variant, element);
            message.location = message.variant == VARIANT_Q931 ? element[2] & 0x0F : 0;
            break;
        case ELEMENT_CHANNEL:
            message.channel = selected_channel(element);
            message.restarted |= is_restart(message.type) ? indicated_channels(element) : 0;
            break;
        case ELEMENT_RESTART:
            message.restarted = (element[2] & RESTART_CLASS) == 0 ? message.restarted : ALL_CHANNELS;
            break;
        case ELEMENT_KEYPAD:
            message.called.append(behind(element, 2));
            break;
        case ELEMENT_CALLING:
            message.calling.append(number(element));
            break;
        case ELEMENT_CALLING_SUBADDRESS:
            read_subaddress(element, message.calling_subaddress);
            break;
        case ELEMENT_CALLED:
            message.called.append(number(element));
            break;
        case ELEMENT_CALLED_SUBADDRESS:
            read_subaddress(element, message.called_subaddress);
            break;
        case ELEMENT_LOW_LAYER:
            message.layer2 = layer2_protocol_name(element);
            break;
        case ELEMENT_HIGH_LAYER:
            message.high_layer = high_layer_name(element);
            break;
        default:
            break;
    }
}

/// Of the codeset that is the network's own.
void read_network_element(octets element, call_message& message) {
    constexpr int element_service = 0x01;
    if (message.variant == VARIANT_1TR6 && element[0] == element_service && element.length > 3) {
        message.service = element.be16(2);
    }
}

/// Reads the elements of the codesets 0 and 6; those of others are walked over.
void read_elements(octets rest, call_message& message) {
    constexpr int of_network = 6;
    int codeset = 0;
    int next_codeset = 0;
    while (rest.within() > 0) {
        const int identifier = rest[0];
        const int length = (identifier & SINGLE_OCTET) != 0 ? 1 : rest[1] + 2;
        if (length > rest.length) {
            return;
        }
        if ((identifier & 0xF0) == SHIFT) {
            next_codeset = identifier & 7;
            codeset = (identifier & NON_LOCKING) == 0 ? next_codeset : codeset;
        } else {
            if (next_codeset == 0) {
                read_element(rest.cut(length), message);
            } else if (next_codeset == of_network) {
                read_network_element(rest.cut(length), message);
            }
            next_codeset = codeset;
        }
        rest = rest.skip(length);
    }
}

}  // namespace

call_message read_call_message(octets message) {
    call_message read;
    const int discriminator = message[0];
    const int reference_length = message[1];
    read.reference = call_reference(message);
    if (message.length < 3 + reference_length || !has_call_reference(discriminator)) {
        return read;
    }
    read.type = message[2 + reference_length];
    const bool global_restart = discriminator == PD_Q931 && reference_length > 0 && is_restart(read.type);
    if (read.reference == 0 && !global_restart) {
        return read;
    }
    read.of_call = discriminator != PD_1TR6_CONTROL && read.reference != 0;
    read.variant = discriminator == PD_Q931 ? VARIANT_Q931 : VARIANT_1TR6;
    read.from_destination = (message[2] & 0x80) != 0;
    read_elements(message.skip(3 + reference_length), read);
    return read;
}

}  // namespace ifwatch::reporting
