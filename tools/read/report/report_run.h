#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string_view>

#include "display/display_context.h"
#include "read/report/interface_report.h"
#include "read/report/journal.h"

namespace ifwatch::reporting {

/// One page about a capture: what happened on its interfaces, and what went wrong first. Its memory is bounded,
/// whatever the capture holds.
///
///     report_run report;
///     const std::size_t line = report.begin_interface("2100", 0, context.mode_flags);
///     for each record: report.take(line, context);
///     report.print();
class report_run {
public:
    static constexpr std::size_t MOST_INTERFACES = 256;

    /// Asks the system for what it needs of it, so that it may be confined afterwards. A tracker remembers
    /// `most_of_each` calls, sessions or pairs of an interface, at least one.
    explicit report_run(std::size_t most_of_each = allowance::MOST_OF_EACH);

    /// An interface that records come from: its name, which may be empty, its type, and the mode flags that its
    /// decoders would have, which tell what a B-channel carries. With `router`, as whoever wrote the capture has noted
    /// it, an interface goes on that is known by this name already. Returns its number. Interfaces behind the last of
    /// MOST_INTERFACES share one number, and are only counted.
    std::size_t begin_interface(std::string_view name, int channel_type, std::uint32_t mode_flags,
                                std::string_view router = {});

    /// Takes the current record of the context.
    void take(std::size_t interface_number, const display_context& context);

    /// How many calls, sessions or pairs that tracker remembers which remembers most.
    [[nodiscard]] std::size_t most_remembered() const;

    /// Prints the page to the standard output. Nothing may be taken behind it.
    void print();

private:
    [[nodiscard]] bool print_head() const;  // false: there was no record
    void print_trouble() const;

    std::deque<interface_report> interfaces_;
    std::uint64_t more_records_ = 0;  // of interfaces that are only counted
    trouble_list troubles_;
    allowance shared_;
};

}  // namespace ifwatch::reporting
