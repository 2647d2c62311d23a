#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"

namespace ifwatch::test {

/// What ifwatch-read makes of its standard input.
inline outcome read_input(const std::string& input, std::vector<std::string> arguments = {}) {
    return run({.program = IFWATCH_READ_PROGRAM, .arguments = std::move(arguments), .input = input});
}

/// A broadcast from 02:00:00:00:00:01, or another last octet, of an ARP packet that has only zeros.
inline std::vector<std::uint8_t> ethernet_frame(std::uint8_t last = 0x01) {
    std::vector<std::uint8_t> frame = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, last, 0x08, 0x06};
    frame.resize(60);
    return frame;
}

/// The lines that do not belong to a record's text: interfaces, losses, and first lines of records.
inline std::vector<std::string> outline_of(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        if (line.starts_with("=== ") || line.starts_with("### ") ||
            (!line.empty() && line[0] >= '0' && line[0] <= '9')) {
            lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
        }
        at = end + 1;
    }
    return lines;
}

}  // namespace ifwatch::test
