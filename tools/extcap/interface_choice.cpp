#include "extcap/interface_choice.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "command_line/text_parts.h"
#include "trace/ifc_types.h"
#include "trace/trace_target.h"

namespace ifwatch::extcap {

namespace {

using kind = choice_word::kind;

constexpr std::int64_t LARGEST_INDEX = std::numeric_limits<std::int32_t>::max();
constexpr std::string_view LINE_WORD = "line:";
constexpr std::string_view SLOT_WORD = "slot:";
constexpr std::string_view ALL_WORD = "all";
constexpr int TYPE_BCHANNEL = 1;

/// Where an interface is in the router. Virtual interfaces have no line: each is one for itself.
struct place {
    std::int32_t slot = 0;
    std::int32_t unit = 0;
    std::int32_t alone = 0;  // the index of a virtual interface

    auto operator<=>(const place&) const = default;
};

place place_of(std::int32_t index) {
    constexpr std::int32_t channels = 100;
    trace_target target;
    split_interface_index(target, index);
    return {target.slot, target.unit, target.channel >= channels ? index : 0};
}

std::int32_t index_of(const listed_interface& listed) { return static_cast<std::int32_t>(listed.index); }

std::optional<std::int32_t> parse_index(std::string_view text) {
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    const auto number = digits ? parse_number(text, 0, LARGEST_INDEX) : std::nullopt;
    return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

/// A word of one number, which may stand behind other text.
std::optional<choice_word> numbered(kind what, std::string_view number) {
    const auto index = parse_index(number);
    return index ? std::optional(choice_word{what, *index, 0, ""}) : std::nullopt;
}

std::optional<choice_word> parse_word(std::string_view text) {
    if (text == ALL_WORD) {
        return choice_word{kind::ALL, 0, 0, ""};
    }
    if (text.starts_with(LINE_WORD)) {
        return numbered(kind::LINE, text.substr(LINE_WORD.size()));
    }
    if (text.starts_with(SLOT_WORD)) {
        return numbered(kind::SLOT, text.substr(SLOT_WORD.size()));
    }
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos) {
        return numbered(kind::INDEX, text);
    }
    const auto first = parse_index(text.substr(0, dash));
    const auto last = parse_index(text.substr(dash + 1));
    const bool right = first && last && *first <= *last;
    return right ? std::optional(choice_word{kind::RANGE, *first, *last, ""}) : std::nullopt;
}

bool fits(const choice_word& word, std::int32_t index) {
    switch (word.what) {
        case kind::INDEX:
            return index == word.first;
        case kind::RANGE:
            return index >= word.first && index <= word.last;
        case kind::LINE:
            return place_of(index) == place_of(word.first);
        case kind::SLOT:
            return place_of(index).slot == word.first && place_of(index).alone == 0;
        case kind::ALL:
            return true;
    }
    return false;
}

std::string counted(std::size_t count, const char* one, const char* several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

/// Listed interfaces that belong together.
struct interface_group {
    place where;
    const listed_interface* first = nullptr;
    std::size_t count = 0;
    std::size_t bchannels = 0;
};

/// The groups in the order of their first interfaces; `same` tells of two places whether they are of one group.
template <class Same>
std::vector<interface_group> group_by(std::span<const listed_interface> listed, Same same) {
    std::vector<interface_group> groups;
    for (const listed_interface& one : listed) {
        const place where = place_of(index_of(one));
        auto found = std::ranges::find_if(groups, [&](const auto& group) { return same(group.where, where); });
        if (found == groups.end()) {
            groups.push_back({where, &one});
            found = std::prev(groups.end());
        }
        ++found->count;
        found->bchannels += one.type == TYPE_BCHANNEL ? 1 : 0;
    }
    return groups;
}

std::string line_title(const interface_group& line) {
    const std::string name = "Line " + std::to_string(line.first->index) + ": ";
    const bool isdn = line.bchannels != 0 && line.bchannels == line.count - 1 && line.first->type != TYPE_BCHANNEL;
    return isdn ? name + ifc_type_entry(line.first->type).name + " and " +
                      counted(line.bchannels, "B-channel", "B-channels")
                : name + counted(line.count, "interface", "interfaces");
}

}  // namespace

bool interface_choice::needs_list() const {
    return std::ranges::any_of(words, [](const choice_word& word) { return word.what != kind::INDEX; });
}

std::string interface_choice::text() const {
    std::string all;
    for (const choice_word& word : words) {
        all += (all.empty() ? "" : ",") + word.text;
    }
    return all;
}

std::optional<interface_choice> parse_interface_choice(std::string_view text) {
    interface_choice choice;
    while (true) {
        const std::size_t comma = text.find(',');
        const std::string_view part = text.substr(0, comma);
        auto word = parse_word(part);
        if (!word) {
            return std::nullopt;
        }
        word->text = part;
        choice.words.push_back(std::move(*word));
        if (comma == std::string_view::npos) {
            return choice;
        }
        text.remove_prefix(comma + 1);
    }
}

std::vector<std::int32_t> resolve_choice(const interface_choice& choice, std::span<const listed_interface> listed,
                                         std::vector<std::string>& unknown) {
    std::vector<std::int32_t> chosen;
    const auto add = [&chosen](std::int32_t index) {
        if (std::ranges::find(chosen, index) == chosen.end()) {
            chosen.push_back(index);
        }
    };
    for (const choice_word& word : choice.words) {
        bool any = word.what == kind::INDEX;
        if (any) {
            add(word.first);
            continue;
        }
        for (const listed_interface& one : listed) {
            if (fits(word, index_of(one))) {
                any = true;
                add(index_of(one));
            }
        }
        if (!any) {
            unknown.push_back(word.text);
        }
    }
    return chosen;
}

std::vector<offered_choice> offer_choices(std::span<const listed_interface> listed) {
    std::vector<offered_choice> offered;
    for (const listed_interface& one : listed) {
        const std::string index = std::to_string(one.index);
        offered.push_back({index, index + " " + ifc_type_entry(one.type).name});
    }
    for (const interface_group& line : group_by(listed, std::equal_to<>())) {
        if (line.count > 1) {
            offered.push_back({std::string(LINE_WORD) + std::to_string(line.first->index), line_title(line)});
        }
    }
    const auto same_slot = [](const place& one, const place& other) {
        return std::tie(one.slot, one.alone) == std::tie(other.slot, other.alone);
    };
    for (const interface_group& slot : group_by(listed, same_slot)) {
        if (slot.count > 1) {
            const std::string number = std::to_string(slot.where.slot);
            offered.push_back({std::string(SLOT_WORD) + number,
                               "Slot " + number + ": " + counted(slot.count, "interface", "interfaces")});
        }
    }
    if (listed.size() > 1) {
        offered.push_back(
            {std::string(ALL_WORD), "The whole router: " + counted(listed.size(), "interface", "interfaces")});
    }
    return offered;
}

}  // namespace ifwatch::extcap
