// Whatever stands on a stream, the element reader takes it apart into elements that fit its buffer, or says why not.

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "support/octet_pipe.h"
#include "trace/element.h"

namespace {

using namespace ifwatch;

constexpr std::size_t PIPE_CAPACITY = 60000;  // less than any pipe buffer, so that one write takes all

bool is_known_error(std::string_view error) {
    return error == "missing elem header data" || error == "missing elem data" || error == "read buffer overflow";
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    const octet_pipe pipe({data, data + std::min(size, PIPE_CAPACITY)});
    std::array<std::uint8_t, 100> buffer{};
    std::uint32_t header = 0;
    const char* error = nullptr;
    while (error == nullptr) {
        error = read_element(pipe.reader(), header, buffer);
        if (error == nullptr && element_data_length(header) >= buffer.size()) {
            std::abort();
        }
    }
    if (!is_known_error(error)) {
        std::abort();
    }
    return 0;
}
