#include "read/report/seen.h"

#include <algorithm>
#include <string>

#include "base/print.h"
#include "read/report/page.h"
#include "trace/ifc_types.h"

namespace ifwatch::reporting {

namespace {

constexpr std::size_t MOST_ROWS = 40;

std::string traffic_text(const seen_counts::direction& what) {
    text_buffer<64> text;
    print_to<"%s, %s">(text, count_text(what.frames, "frame"), count_text(what.octets, "octet"));
    return std::string(text.text());
}

/// The share that no decoder knew; one that is not 0 never shows as such.
std::string share_text(const seen_counts& seen) {
    const std::uint64_t frames = seen.sent.frames + seen.received.frames;
    if (seen.unknown == 0) {
        return {};
    }
    text_buffer<64> text;
    print_to<"; no decoder knows %lu %% of them">(text, std::max<std::uint64_t>(1, seen.unknown * 100 / frames));
    return std::string(text.text());
}

void print_interface(const interface_report& from) {
    const seen_counts& seen = from.seen;
    print<"  %s%s%s: ">(from.name, from.name.empty() ? "" : " ", ifc_type_entry(from.channel_type).name);
    if (seen.records == 0) {
        print<"no record\n">();
        return;
    }
    print<"%s to %s\n">(place_text(seen.first), place_text(seen.last));
    print<"      sent %s; received %s%s\n">(traffic_text(seen.sent), traffic_text(seen.received), share_text(seen));
    if (seen.lost > 0) {
        print<"      %s lost: what the rows above miss may have been in them\n">(count_text(seen.lost, "record"));
    }
}

}  // namespace

void count_record(seen_counts& seen, place at) {
    if (seen.records == 0) {
        seen.first = at;
    } else if (const std::uint32_t gap = at.number - seen.last.number - 1; gap < 1U << 31) {
        seen.lost += gap;
    }
    ++seen.records;
    seen.last = at;
}

void count_frame(seen_counts& seen, bool sent, std::uint32_t original_length, bool known) {
    seen_counts::direction& to = sent ? seen.sent : seen.received;
    ++to.frames;
    to.octets += original_length;
    seen.unknown += known ? 0 : 1;
}

void print_seen(const std::deque<interface_report>& interfaces, std::uint64_t more_records) {
    print<"\nSeen\n">();
    std::size_t rows = 0;
    for (const interface_report& from : interfaces) {
        if (rows == MOST_ROWS) {
            break;
        }
        ++rows;
        print_interface(from);
    }
    if (rows < interfaces.size()) {
        print<"  and %s\n">(count_text(interfaces.size() - rows, "more interface"));
    }
    if (more_records > 0) {
        print<"  and %s of further interfaces, which were not looked at\n">(count_text(more_records, "record"));
    }
}

}  // namespace ifwatch::reporting
