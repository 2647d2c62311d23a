#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ifwatch::read {

/// A capture that is open until the process ends.
struct open_capture {
    std::string name;  // for messages: "lan.pcap", "standard input"
    int fd = -1;
    std::optional<std::uint64_t> octets = {};  // still to be read; nothing: nobody knows, it is no plain file
};

/// Opens every file, all before the first is read: later nothing can be opened any more. "-" is the standard input.
/// Where one cannot be opened the reason is added to `errors`, a line each, and the others are opened.
[[nodiscard]] std::vector<open_capture> open_captures(const std::vector<std::string>& files,
                                                      std::vector<std::string>& errors);

}  // namespace ifwatch::read
