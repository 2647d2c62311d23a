#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "trace/connect.h"

namespace ifwatch::extcap {

// Which interfaces of a router are traced, as a list of words with commas between them:
//
//     2100          an interface by its index
//     2100-2130     those of the router's list with an index from the one to the other
//     line:2100     the line of an interface: those of its unit, a D-channel and its B-channels
//     slot:2        those of a slot
//     all           every one of the router's list

struct choice_word {
    enum class kind : std::uint8_t { INDEX, RANGE, LINE, SLOT, ALL };

    kind what = kind::INDEX;
    std::int32_t first = 0;
    std::int32_t last = 0;  // of a range
    std::string text;       // as it was given

    bool operator==(const choice_word&) const = default;
};

struct interface_choice {
    std::vector<choice_word> words;

    [[nodiscard]] bool empty() const { return words.empty(); }
    /// Whether the router has to be asked which interfaces it has.
    [[nodiscard]] bool needs_list() const;
    [[nodiscard]] std::string text() const;

    bool operator==(const interface_choice&) const = default;
};

/// Nothing when a word is none of those above.
[[nodiscard]] std::optional<interface_choice> parse_interface_choice(std::string_view text);

/// The indexes of the chosen interfaces, in the order of the choice, each once. `unknown` gets the words that no listed
/// interface fits; an index by itself always does.
[[nodiscard]] std::vector<std::int32_t> resolve_choice(const interface_choice& choice,
                                                       std::span<const listed_interface> listed,
                                                       std::vector<std::string>& unknown);

/// What a form offers: a choice and how it is shown.
struct offered_choice {
    std::string value;
    std::string title;
};

/// Each interface of the list; each line, slot and the whole router where that is more than one.
[[nodiscard]] std::vector<offered_choice> offer_choices(std::span<const listed_interface> listed);

}  // namespace ifwatch::extcap
