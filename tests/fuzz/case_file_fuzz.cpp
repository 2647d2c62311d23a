// Any text is a case or has a line that says why not. A case that was read keeps the limits of a record, is written as
// a text that is read as the same case, and becomes a capture or has a line that says why not.

#include <cstdint>
#include <string>
#include <vector>

#include "cases/case_file.h"
#include "cases/case_text.h"
#include "convert/capture_export.h"
#include "display_check.h"

namespace {

using namespace ifwatch::cases;
using ifwatch::fuzz::require;

void check_text(const trace_case& parsed) {
    trace_case again;
    std::string error;
    require(parse_case(case_text(parsed, "fuzzed"), again, error), "what was written can be read");
    require(again.channel_type == parsed.channel_type && again.interface_index == parsed.interface_index &&
                again.name == parsed.name && again.options == parsed.options && again.records == parsed.records,
            "what was written is read as it was");
}

void check_export(const trace_case& parsed) {
    std::vector<std::uint8_t> file;
    std::size_t left_out = 0;
    std::string error;
    const bool exported = ifwatch::convert::export_capture(parsed, {}, file, left_out, error);
    require(exported == error.empty(), "a case that is not exported has a reason");
    require(left_out <= parsed.records.size(), "no more is left out than there is");
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    trace_case parsed;
    std::string error;
    // Octets and characters are the same storage; the cast only changes how they are named.
    if (!parse_case({reinterpret_cast<const char*>(data), size}, parsed, error)) {
        require(!error.empty(), "a mistake is named");
        return 0;
    }
    for (const case_record& record : parsed.records) {
        require(record.data.size() <= MAX_RECORD_DATA, "a record holds what its length field can tell");
    }
    check_text(parsed);
    check_export(parsed);
    return 0;
}
