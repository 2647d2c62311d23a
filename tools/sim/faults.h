#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ifwatch::sim {

enum class fault_kind { NONE, MUTE, REFUSE, CUT, STALL, DRIP, RECORD_LENGTH, ELEMENT_LENGTH, SILENCE, SWAP, RESTART };

/// What a daemon does wrong.
struct fault {
    fault_kind kind = fault_kind::NONE;
    std::uint64_t record = 0;  // counted from 1 as records are sent; of silence: the last that is sent
    int element = 0;           // element type
    std::uint32_t length = 0;  // what the wrong header tells
    std::optional<std::uint32_t> interface_index = {};  // where it happens; nothing: everywhere
};

/// The faults of a daemon: at most one for an interface, and one for those that have none.
using fault_list = std::vector<fault>;

/// The fault of an interface; of those that have none of their own without an index.
[[nodiscard]] const fault& fault_of(const fault_list& faults, std::optional<std::int64_t> interface_index);

/// Parses a text such as "cut=3" or "cut=3@2101" and appends the fault. False when there is no such fault, or already
/// one for the interface.
bool add_fault(const std::string& text, fault_list& faults);

}  // namespace ifwatch::sim
