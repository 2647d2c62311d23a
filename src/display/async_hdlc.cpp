#include "display/async_hdlc.h"

#include <algorithm>
#include <array>
#include <span>

#include "base/hex_dump.h"
#include "base/names.h"
#include "base/print.h"
#include "display/fcs16.h"
#include "display/mode_flags.h"

namespace ifwatch {

namespace {

constexpr std::uint8_t FLAG = 0x7E;
constexpr std::uint8_t ESCAPE = 0x7D;
constexpr std::uint32_t ESCAPE_BIT = 0x20;  // of the octet behind an escape
constexpr int FCS_LENGTH = 2;
constexpr int SHORTEST_FRAME = 4;  // FCS included
constexpr int RECORD_PREFIX = 4;   // octets in front of a slice in the reserved mode, before one or two more
constexpr int HEX_OCTETS = 38;     // shown of a frame, unless the whole of it was asked for

constexpr named_value ERROR_TEXTS[] = {
    {static_cast<int>(framing_error::ABORT), "             ASYNC FRAME ABORT"},
    {static_cast<int>(framing_error::TOO_SMALL), "             ASYNC FRAME TOO SMALL %d"},
    {static_cast<int>(framing_error::FCS), "             ASYNC FRAME FCS ERROR"},
    {static_cast<int>(framing_error::TOO_LONG), "             ASYNC FRAME TOO LONG %d"},
};

void begin_frame(async_state& state) {
    state.room = state.maximum;
    state.count = 0;
    state.escape = 0;
    state.fcs = FCS16_START;
}

bool discard_frame(async_scanner& scanner, framing_error error) {
    scanner.error = error;
    scanner.error_count = scanner.state.count;
    begin_frame(scanner.state);
    return false;
}

/// Stores the octets up to the next flag, as far as there is room, without the escapes among them. An octet is stored
/// first and then kept or not, so that no branch depends on where the escapes are.
void take_data(async_scanner& scanner) {
    async_state& state = scanner.state;
    std::uint8_t* const begin = state.buffer.data() + state.count;
    std::uint8_t* end = begin;
    int taken = 0;
    for (const std::uint8_t octet : scanner.rest.run(0, std::min(scanner.rest.length, state.room))) {
        if (octet == FLAG) {
            break;
        }
        *end = static_cast<std::uint8_t>(octet ^ state.escape);
        end += octet == ESCAPE ? 0 : 1;
        state.escape = octet == ESCAPE ? ESCAPE_BIT : 0;
        ++taken;
    }
    const auto stored = static_cast<int>(end - begin);
    state.fcs = fcs16(static_cast<std::uint16_t>(state.fcs), {begin, end});
    state.count += stored;
    state.room -= stored;
    scanner.rest = scanner.rest.skip(taken);
}

/// An octet behind the last that there is room for is dropped, and the frame with it.
void take_octet_without_room(async_scanner& scanner) {
    if (scanner.rest[0] == ESCAPE) {
        scanner.state.escape = ESCAPE_BIT;
    } else {
        discard_frame(scanner, framing_error::TOO_LONG);
    }
    scanner.rest = scanner.rest.skip(1);
}

/// A flag: true when it completes a good frame. Flags in a row are one.
bool take_flag(async_scanner& scanner) {
    async_state& state = scanner.state;
    scanner.rest = scanner.rest.skip(1);
    if (state.escape != 0) {
        return discard_frame(scanner, framing_error::ABORT);
    }
    if (state.count == 0) {
        return false;
    }
    if (state.count < SHORTEST_FRAME) {
        return discard_frame(scanner, framing_error::TOO_SMALL);
    }
    if (state.fcs != FCS16_GOOD) {
        return discard_frame(scanner, framing_error::FCS);
    }
    scanner.frame = octets_of(state.buffer).cut(state.count - FCS_LENGTH);
    begin_frame(state);
    return true;
}

/// A record of the reserved mode carries 5 or 6 octets of its own in front of the slice.
octets skip_record_prefix(octets payload) {
    return payload.skip((payload[RECORD_PREFIX] & 0x80) == 0 ? RECORD_PREFIX + 2 : RECORD_PREFIX + 1);
}

/// Announces and decodes a completed frame. It is decoded from a copy, since what it carries may be reassembled in the
/// same buffer.
void dump_frame(octets frame, std::uint32_t record_flags, display_context& context, frame_decoder decode) {
    std::array<std::uint8_t, async_state::MAXIMUM> copy{};
    std::copy_n(frame.data, frame.length, copy.begin());
    const octets packet = octets_of(copy).cut(frame.length);

    print<"             DATA PACKET   [%04d]\n">(packet.length);
    if ((context.mode_flags & MODE_ASYNC_HEX) != 0) {
        const bool whole = (context.mode_flags & MODE_ASYNC_FULL_HEX) != 0;
        hex_dump(packet, whole ? packet.length : std::min(packet.length, HEX_OCTETS), 16, 6);
    }
    decode(packet, record_flags, context);
    print<"\n">();
}

}  // namespace

bool async_next_frame(async_scanner& scanner) {
    scanner.error = framing_error::NONE;
    while (scanner.rest.within() > 0 && scanner.error == framing_error::NONE) {
        if (scanner.rest[0] == FLAG) {
            if (take_flag(scanner)) {
                return true;
            }
        } else if (scanner.state.room > 0) {
            take_data(scanner);
        } else {
            take_octet_without_room(scanner);
        }
    }
    return false;
}

void dump_data_packet(octets payload, std::uint32_t record_flags, display_context& context, frame_decoder decode) {
    if ((context.mode_flags & MODE_RESERVED) != 0) {
        if (payload.length <= RECORD_PREFIX) {
            return;
        }
        payload = skip_record_prefix(payload);
    }
    payload.length = static_cast<std::uint16_t>(payload.length);
    async_scanner scanner{.rest = payload, .state = context.async[record_flags != 0 ? 0 : 1]};
    while (scanner.rest.within() > 0) {
        const octets start = scanner.rest;
        if (async_next_frame(scanner)) {
            dump_frame(scanner.frame, record_flags, context, decode);
        } else if (scanner.error != framing_error::NONE) {
            print_named(value_name(ERROR_TEXTS, static_cast<int>(scanner.error)),
                        static_cast<std::uint32_t>(scanner.error_count));
            hex_dump(start, start.length - scanner.rest.length, 16, 2);
        } else {
            print<"             DATA_CONT   [%04d]\n">(start.length);
        }
    }
}

void dump_text(octets data) {
    print<"\t\t">();
    for (const std::uint8_t octet : data.run(0, data.length)) {
        if (is_printable(octet)) {
            print<"%c  ">(octet);
        } else {
            print<"%02X ">(octet);
        }
    }
    print<"\n">();
}

}  // namespace ifwatch
