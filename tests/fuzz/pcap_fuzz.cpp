// Any octets are a classic PCAP file or damaged at a place that is told; whatever lengths and times they claim, packets
// and the records made of them keep their bounds. The input is an octet that chooses a channel type, and the file.

#include <array>
#include <cstdint>

#include "capture_check.h"

namespace {

constexpr std::array<int, 8> CHANNEL_TYPES = {-2, 0, 1, 2, 3, 6, 9, 131};

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    if (size != 0) {
        ifwatch::fuzz::check_capture({data + 1, size - 1}, CHANNEL_TYPES[data[0] % CHANNEL_TYPES.size()]);
    }
    return 0;
}
