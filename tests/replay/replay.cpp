// Replays golden cases damaged: every record at every truncation length, and with each octet in turn set to each of a
// few values, in the state in which the whole record was met. Built with the address and undefined-behaviour
// sanitizers; beside them it holds the output of each record to its bound. Usage: replay CASE...

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "support/case_options.h"

namespace {

using namespace ifwatch;

constexpr std::array<std::uint8_t, 4> PLANTED = {0x00, 0x7F, 0x80, 0xFF};
constexpr int MAXIMUM_CAPTURED = 8192;

std::size_t printed = 0;  // NOLINT(*-avoid-non-const-global-variables): the writer below has no other place for it

long count_output(const char* /*data*/, std::size_t length) {
    printed += length;
    return static_cast<long>(length);
}

/// Shows the octets as the record's, from memory of exactly their size. False when it prints out of proportion.
bool show(display_context& context, const cases::case_record& record, std::span<const std::uint8_t> captured) {
    const record_header header{.timestamp_ms = record.timestamp_ms,
                               .record_flags = record.flags,
                               .channel_info = record.info,
                               .sequence = record.sequence};
    const auto exact = std::make_unique<std::uint8_t[]>(captured.size());
    std::copy(captured.begin(), captured.end(), exact.get());
    context.header = &header;
    context.payload = octets_of({exact.get(), captured.size()});
    context.original_length = captured.empty() ? 0 : record.original_length;
    const std::size_t bound = record_output_bound(context);
    printed = 0;
    display_record(context);
    flush_output();
    context.header = nullptr;
    return printed <= bound;
}

/// One record in all its damaged forms. Returns how many were shown; 0 when one printed out of proportion.
std::size_t damage(const display_context& before, const cases::case_record& record) {
    std::size_t shown = 0;
    std::vector<std::uint8_t> octets = record.data;
    const auto damaged_copy = std::make_unique<display_context>();
    for (std::size_t length = 0; length < octets.size(); ++length) {
        *damaged_copy = before;
        if (!show(*damaged_copy, record, std::span(octets).first(length))) {
            return 0;
        }
        ++shown;
    }
    for (std::uint8_t& octet : octets) {
        const std::uint8_t kept = octet;
        for (const std::uint8_t planted : PLANTED) {
            octet = planted;
            *damaged_copy = before;
            if (!show(*damaged_copy, record, octets)) {
                return 0;
            }
            ++shown;
        }
        octet = kept;
    }
    return shown + 1;  // the empty record, too, counts as one
}

/// Every record of a case under one options line. False after naming the record that printed out of proportion.
bool replay(const std::string& path, const cases::trace_case& trace, const std::string& options, std::size_t& shown) {
    const auto context = std::make_unique<display_context>();
    init_display_context(*context);
    context->mode_flags = test::mode_flags_of(options);
    context->channel_type = trace.channel_type;
    apply_default_flags(*context);
    for (const cases::case_record& record : trace.records) {
        if (static_cast<int>(record.data.size()) > MAXIMUM_CAPTURED) {
            break;  // the stream ends at such a record
        }
        const std::size_t count = damage(*context, record);
        if (count == 0 || !show(*context, record, record.data)) {
            report<"%s: options %s: record %u prints more than its bound\n">(path, options, record.sequence);
            return false;
        }
        shown += count;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    set_output_writer(count_output);
    std::size_t shown = 0;
    bool held = argc > 1;
    for (const std::string path : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        cases::trace_case trace;
        std::string error;
        if (!cases::read_case_file(path, trace, error)) {
            write_errors(error + "\n");
            held = false;
            continue;
        }
        for (const std::string& options : trace.options) {
            held = replay(path, trace, options, shown) && held;
        }
    }
    report<"%lu damaged records shown\n">(shown);
    return held && shown != 0 ? 0 : 1;
}
