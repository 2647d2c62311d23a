// Any text is a case or has a line that says why not, and a case that was read keeps the limits of a record.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "sim/case_file.h"

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    using namespace ifwatch::sim;
    trace_case parsed;
    std::string error;
    // Octets and characters are the same storage; the cast only changes how they are named.
    if (!parse_case({reinterpret_cast<const char*>(data), size}, parsed, error)) {
        if (error.empty()) {
            std::abort();
        }
        return 0;
    }
    for (const case_record& record : parsed.records) {
        if (record.data.size() > MAX_RECORD_DATA) {
            std::abort();
        }
    }
    return 0;
}
