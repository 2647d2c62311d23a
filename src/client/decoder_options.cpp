#include "client/decoder_options.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "base/verbose.h"
#include "display/mode_flags.h"

namespace ifwatch {

namespace {

struct mode_letter {
    char letter;
    std::uint32_t bits;
};

constexpr mode_letter MODE_LETTERS[] = {
    {'h', MODE_HEX},
    {'!', MODE_FULL_HEX},
    {'2', MODE_LAYER2 | MODE_LAYER2_ASKED},
    {'3', MODE_LAYER3 | MODE_LAYER3_ASKED},
    {'F', MODE_FAX},
    {'A', MODE_FAX | MODE_FAX_AT},
    {'D', MODE_DELTA_TIME},
    {'e', MODE_EFT},
    {'p', MODE_PPP},
    {'a', MODE_ASYNC_HDLC},
    {'f', MODE_FRAME_RELAY},
    {'i', MODE_IP},
    {'N', MODE_IPX},
    {'t', MODE_TEXT},
    {'x', MODE_RAW},
    {'X', MODE_PPP_X75},
    {'T', MODE_TEI_FILTER},
    {'c', MODE_CREF_FILTER},
    {'v', 0},
};

}  // namespace

bool take_decoder_option(int key, const char* argument, decoder_options& settings) {
    const auto* const found =
        std::ranges::find_if(MODE_LETTERS, [key](const mode_letter& row) { return row.letter == key; });
    if (found == std::end(MODE_LETTERS)) {
        return false;
    }
    settings.mode_flags |= found->bits;
    if (key == 'T') {
        settings.tei_filter = option_number(argument);
    } else if (key == 'c') {
        settings.cref_filter = option_number(argument);
    } else if (key == 'v') {
        ++verbose_level;
    }
    return true;
}

void complete_mode_flags(std::uint32_t& flags) {
    if ((flags & MODE_ASYNC_HDLC) != 0 && (flags & MODE_HEX) != 0) {
        // Reassembled frames are shown in hexadecimal instead of the slices they came in.
        flags &= ~(MODE_HEX | MODE_FULL_HEX);
        flags |= MODE_ASYNC_HEX;
    }
    if ((flags & MODE_RAW) != 0) {
        flags |= MODE_HEX | MODE_FULL_HEX;
    }
}

std::int32_t option_number(const char* text) { return static_cast<std::int32_t>(std::strtoll(text, nullptr, 10)); }

}  // namespace ifwatch
