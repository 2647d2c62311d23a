#include "trace/trace_target.h"

#include "base/byte_order.h"

namespace ifwatch {

std::int32_t interface_index(const trace_target& target) {
    const auto slot = static_cast<std::uint32_t>(target.slot);
    const auto unit = static_cast<std::uint32_t>(target.unit);
    return static_cast<std::int32_t>(1000 * slot + 100 * unit + static_cast<std::uint32_t>(target.channel));
}

void split_interface_index(trace_target& target, std::int32_t index) {
    if (index >= 100000 && index <= 149999) {
        target.slot = 0;
        target.unit = 0;
        target.channel = index;
        return;
    }
    const bool wide_unit = index >= 200000 && index <= 499999;
    target.slot = wide_unit ? index / 10000 * 10 : index / 1000;
    target.unit = index % (wide_unit ? 10000 : 1000) / 100;
    target.channel = index % 100;
}

void encode_trace_request(const trace_target& target, std::span<std::uint8_t, TRACE_REQUEST_LENGTH> request) {
    const std::int32_t words[] = {target.version, target.slot, target.unit, target.channel, target.capture_length};
    std::uint8_t* at = request.data();
    for (const std::int32_t word : words) {
        store_be32(at, static_cast<std::uint32_t>(word));
        at += sizeof word;
    }
}

}  // namespace ifwatch
