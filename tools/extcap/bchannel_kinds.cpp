#include "extcap/bchannel_kinds.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "command_line/text_parts.h"

namespace ifwatch::extcap {

namespace {

using namespace capture;

constexpr bchannel_kind BCHANNEL_KINDS[] = {
    {"ppp", "PPP", {LINK_PPP}},
    {"lapb", "LAPB or X.75, with X.25 or T.70 on it", {LINK_EXPORTED_PDU, "lapb"}},
    {"frame-relay", "Frame Relay", {LINK_FRAME_RELAY}},
    {"cisco-hdlc", "Cisco HDLC", {LINK_CISCO_HDLC}},
    {"ip", "IP without a link layer", {LINK_RAW_IP}},
    {"raw", "Raw frames (link type USER0)", {LINK_USER0}},
};

const bchannel_kind* find_kind(std::string_view word) {
    const auto* const found = std::ranges::find(BCHANNEL_KINDS, word, &bchannel_kind::word);
    return found != std::end(BCHANNEL_KINDS) ? found : nullptr;
}

/// Takes one part: a kind, or an interface with its own.
bool take_part(std::string_view part, bool& has_usual, bchannel_choice& choice) {
    const std::size_t equals = part.find('=');
    const bool for_all = equals == std::string_view::npos;
    const bchannel_kind* const kind = find_kind(for_all ? part : part.substr(equals + 1));
    if (kind == nullptr || (for_all && has_usual)) {
        return false;
    }
    if (for_all) {
        has_usual = true;
        choice.usual = kind;
        return true;
    }
    const auto number = parse_number(part.substr(0, equals), 0, std::numeric_limits<std::int32_t>::max());
    const auto index = static_cast<std::int32_t>(number.value_or(0));
    if (!number ||
        std::ranges::find(choice.exceptions, index, &bchannel_choice::exception::index) != choice.exceptions.end()) {
        return false;
    }
    choice.exceptions.push_back({index, kind});
    return true;
}

}  // namespace

std::span<const bchannel_kind> bchannel_kinds() { return BCHANNEL_KINDS; }

const bchannel_kind& bchannel_choice::of(std::int32_t index) const {
    const auto found = std::ranges::find(exceptions, index, &exception::index);
    return found != exceptions.end() ? *found->kind : *usual;
}

std::optional<bchannel_choice> parse_bchannel_choice(std::string_view text) {
    bchannel_choice choice;
    bool has_usual = false;
    while (true) {
        const std::size_t comma = text.find(',');
        if (!take_part(text.substr(0, comma), has_usual, choice)) {
            return std::nullopt;
        }
        if (comma == std::string_view::npos) {
            return choice;
        }
        text.remove_prefix(comma + 1);
    }
}

}  // namespace ifwatch::extcap
