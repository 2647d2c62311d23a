#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ifwatch::test {

/// One run of a case: the text of its options line and what the run printed.
struct golden_run {
    std::string options;
    std::string output;
};

/// The first line in which two outputs differ, as texts to show: in quotes, with control characters made visible, or
/// "(end of output)".
struct difference {
    std::size_t line = 0;    // counted from 1
    std::size_t record = 0;  // the displayed record it belongs to, counted from 1; 0: before the first
    std::string expected;
    std::string got;
};

[[nodiscard]] std::optional<difference> first_difference(std::string_view expected, std::string_view got);

/// A line in quotes: tabs as \t, other control characters and octets above 0x7E as \xHH.
[[nodiscard]] std::string visible(std::string_view line);

/// The expected text of a case: the output of its only run, or for several runs each output behind a line
/// "=== OPTIONS".
[[nodiscard]] std::string join_runs(const std::vector<golden_run>& runs);

/// Splits an expected text into the outputs of the runs with these options. False with a one-line `error` when a run
/// is missing or text stands before the first.
bool split_runs(std::string_view text, const std::vector<std::string>& options, std::vector<golden_run>& runs,
                std::string& error);

}  // namespace ifwatch::test
