// Whatever a capture holds, the report about it comes to its end, reads no octet that is not there, stays small, and
// prints no more than a page of bounded sections, in which nothing can act on a terminal. The input is a whole
// trace, in steps of 100 ms (display_check.h); records with the highest bit of their flags set are those of a second
// interface, a D-channel. An input is too short for the bound of a tracker, so it gets a small one, or its own where
// the last octet of the header is even.

#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "base/byte_order.h"
#include "base/print.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "display_check.h"
#include "read/report/report_run.h"

namespace {

using namespace ifwatch;

constexpr std::uint32_t OTHER_INTERFACE = 1U << 31;

// Of two interfaces: at most 11 lines of trouble, and of each protocol two sections of a few dozen rows.
constexpr std::size_t LONGEST_PAGE = std::size_t{128} << 10;
constexpr std::size_t MOST_TROUBLE = 11;
constexpr std::size_t FEW_REMEMBERED = 4;
constexpr std::size_t MOST_MEMORY = std::size_t{48} << 20;

std::string page;  // NOLINT(*-avoid-non-const-global-variables): an output writer has no other way

long collect(const char* data, std::size_t length) {
    page.append(data, length);
    return static_cast<long>(length);
}

void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// Takes the first record of the input; returns what follows it.
std::span<const std::uint8_t> take_record(std::span<const std::uint8_t> input, record_header& header,
                                          display_context& context, reporting::report_run& report) {
    const fuzz::taken_record taken = fuzz::take_record(input, 100, header, context);
    const bool other = (header.record_flags & OTHER_INTERFACE) != 0;
    header.record_flags &= ~OTHER_INTERFACE;
    report.take(other ? 1 : 0, context);
    context.header = nullptr;
    return taken.rest;
}

void check_page(bool has_records) {
    if (!has_records) {
        demand(page == "No record.\n");
        return;
    }
    demand(!page.empty() && page.size() <= LONGEST_PAGE);
    demand(std::ranges::all_of(page, [](char one) { return one == '\n' || (one >= ' ' && one <= '~'); }));
    const std::size_t begin = page.find("\nTrouble\n");
    demand(begin != std::string::npos);
    const std::size_t end = page.find("\n\n", begin + 1);
    demand(end != std::string::npos);
    std::size_t troubles = 0;
    for (std::size_t line = page.find('\n', begin + 1); line < end; line = page.find('\n', line + 1)) {
        troubles += page.compare(line + 1, 3, "   ") != 0 ? 1 : 0;  // else the line before goes on
    }
    demand(troubles <= MOST_TROUBLE);
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    std::span<const std::uint8_t> input{data, size};
    if (input.size() < fuzz::TRACE_HEADER) {
        return 0;
    }
    set_output_writer(collect);
    page.clear();
    const std::size_t memory_before = __sanitizer_get_current_allocated_bytes();
    const bool few = (input[fuzz::TRACE_HEADER - 1] & 1) != 0;
    const std::size_t most_of_each = few ? FEW_REMEMBERED : reporting::allowance::MOST_OF_EACH;
    reporting::report_run report(most_of_each);
    display_context context;
    context.mode_flags = load_le32(input.data());
    context.channel_type = static_cast<std::int16_t>(load_be16(&input[4]));
    apply_default_flags(context);
    report.begin_interface("2101", context.channel_type, context.mode_flags);
    report.begin_interface("2100", 0, context.mode_flags);
    record_header header;
    for (input = input.subspan(fuzz::TRACE_HEADER); input.size() >= fuzz::RECORD_HEADER;) {
        input = take_record(input, header, context, report);
    }
    demand(__sanitizer_get_current_allocated_bytes() <= memory_before + MOST_MEMORY);
    demand(report.most_remembered() <= most_of_each);
    report.print();
    check_page(header.sequence > 0);
    return 0;
}
