#include "sim/faults.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

#include "command_line/text_parts.h"

namespace ifwatch::sim {

namespace {

constexpr std::int64_t MAX_COUNT = std::numeric_limits<std::uint32_t>::max();
constexpr fault NO_FAULT{};

/// A fault that is a word alone, or a word and the number of a record.
struct fault_word {
    std::string_view word;
    fault_kind kind;
    int first_record = -1;  // the lowest number; -1: there is none
};

constexpr fault_word FAULT_WORDS[] = {
    {"mute", fault_kind::MUTE},          {"refuse", fault_kind::REFUSE},      {"cut", fault_kind::CUT, 1},
    {"stall", fault_kind::STALL, 1},     {"drip", fault_kind::DRIP},          {"swap", fault_kind::SWAP, 1},
    {"silence", fault_kind::SILENCE, 0}, {"restart", fault_kind::RESTART, 1},
};

bool parse_length_fault(std::string_view text, fault& trouble) {
    const std::size_t first = text.find(':');
    const std::size_t second = text.find(':', first + 1);
    if (first == std::string_view::npos || second == std::string_view::npos) {
        return false;
    }
    const std::string_view what = text.substr(0, first);
    const bool of_record = what == "record";
    const auto which =
        parse_number(text.substr(first + 1, second - first - 1), of_record ? 1 : 0, of_record ? MAX_COUNT : 0xFF);
    const auto length = parse_number(text.substr(second + 1), 0, of_record ? 0xFFFF : 0xFFFFFF);
    if ((!of_record && what != "element") || !which || !length) {
        return false;
    }
    trouble.kind = of_record ? fault_kind::RECORD_LENGTH : fault_kind::ELEMENT_LENGTH;
    trouble.record = of_record ? static_cast<std::uint64_t>(*which) : 0;
    trouble.element = of_record ? 0 : static_cast<int>(*which);
    trouble.length = static_cast<std::uint32_t>(*length);
    return true;
}

bool parse_fault(std::string_view text, fault& trouble) {
    const std::size_t equals = text.find('=');
    const std::string_view word = text.substr(0, equals);
    const bool has_rest = equals != std::string_view::npos;
    const std::string_view rest = has_rest ? text.substr(equals + 1) : "";
    if (word == "length") {
        return parse_length_fault(rest, trouble);
    }
    const auto* const known = std::ranges::find(FAULT_WORDS, word, &fault_word::word);
    if (known == std::end(FAULT_WORDS) || has_rest != (known->first_record >= 0)) {
        return false;
    }
    const auto record = has_rest ? parse_number(rest, known->first_record, MAX_COUNT) : std::optional<std::int64_t>(0);
    trouble.kind = known->kind;
    trouble.record = static_cast<std::uint64_t>(record.value_or(0));
    return record.has_value();
}

}  // namespace

const fault& fault_of(const fault_list& faults, std::optional<std::int64_t> interface_index) {
    const fault* everywhere = &NO_FAULT;
    for (const fault& each : faults) {
        if (!each.interface_index) {
            everywhere = &each;
        } else if (interface_index == std::int64_t{*each.interface_index}) {
            return each;
        }
    }
    return *everywhere;
}

bool add_fault(const std::string& text, fault_list& faults) {
    fault trouble;
    const std::size_t at = text.find('@');
    if (at != std::string::npos) {
        const auto index = parse_number(std::string_view(text).substr(at + 1), 0, MAX_COUNT);
        trouble.interface_index = static_cast<std::uint32_t>(index.value_or(0));
        if (!index) {
            return false;
        }
    }
    const bool another = std::ranges::find(faults, trouble.interface_index, &fault::interface_index) != faults.end();
    // Octets drip before the client has said which interface it wants.
    const bool right = parse_fault(std::string_view(text).substr(0, at), trouble) && !another &&
                       (trouble.kind != fault_kind::DRIP || !trouble.interface_index);
    if (right) {
        faults.push_back(trouble);
    }
    return right;
}

}  // namespace ifwatch::sim
