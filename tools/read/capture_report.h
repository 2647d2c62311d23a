#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "read/lines.h"
#include "read/report/report_run.h"

namespace ifwatch::read {

/// The report about the lines of one capture or several.
class capture_report {
public:
    [[nodiscard]] bool knows(const traced_line& line) const { return numbers_.contains(line.serial); }

    /// A line that is not known yet. `title` goes in front of the names of a capture's lines; a line that is the only
    /// one and has no name but its number goes without one.
    void begin_line(const traced_line& line, const std::string& title, bool several_lines);

    /// Takes the current record of a line that is known.
    void take(const traced_line& line) { report_.take(numbers_.find(line.serial)->second, line.context); }

    /// The next records come from another capture, whose lines have serial numbers of their own.
    void begin_capture() { numbers_.clear(); }

    /// Prints the page to the standard output. False when that has failed. Nothing may be taken behind it.
    bool print();

private:
    reporting::report_run report_;
    std::unordered_map<std::uint64_t, std::size_t> numbers_;  // of the report's interfaces, by serial number
};

}  // namespace ifwatch::read
