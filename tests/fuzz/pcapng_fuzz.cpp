// Any octets are a pcapng file or damaged at a place that is told; whatever lengths and times they claim, packets and
// the records made of them keep their bounds. The input is an octet that chooses a channel type, and the file behind
// the type of its first block.

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "capture_check.h"

namespace {

constexpr std::array<int, 8> CHANNEL_TYPES = {-2, 0, 1, 2, 3, 6, 9, 131};
constexpr std::array<std::uint8_t, 4> SECTION = {0x0A, 0x0D, 0x0D, 0x0A};

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    if (size == 0) {
        return 0;
    }
    std::vector<std::uint8_t> file(SECTION.begin(), SECTION.end());
    file.insert(file.end(), data + 1, data + size);
    ifwatch::fuzz::check_capture(file, CHANNEL_TYPES[data[0] % CHANNEL_TYPES.size()]);
    return 0;
}
