#include "cases/record_source.h"

#include <algorithm>
#include <cstddef>

#include "base/byte_order.h"

namespace ifwatch::cases {

namespace {

constexpr std::uint16_t PROTOCOL_PART_LENGTH = 16;

}  // namespace

void append_record(std::vector<std::uint8_t>& buffer, const case_record& record, std::int32_t capture_length) {
    const std::size_t captured = capture_length < 0
                                     ? record.data.size()
                                     : std::min(record.data.size(), static_cast<std::size_t>(capture_length));
    const std::size_t start = buffer.size();
    buffer.resize(start + RECORD_HEADER_LENGTH);
    std::uint8_t* const header = &buffer[start];
    store_be16(header, static_cast<std::uint16_t>(RECORD_HEADER_LENGTH + captured));
    store_be16(header + 2, PROTOCOL_PART_LENGTH);
    store_be32(header + 4, record.timestamp_ms);
    store_be32(header + 8, record.flags);
    store_be32(header + 12, record.info);
    store_be32(header + 16, record.sequence);
    store_be16(header + 20, record.original_length);
    buffer.insert(buffer.end(), record.data.begin(), record.data.begin() + static_cast<std::ptrdiff_t>(captured));
}

loop_step step_of(const std::vector<case_record>& records) {
    if (records.empty()) {
        return {};
    }
    const std::uint32_t span = records.back().timestamp_ms - records.front().timestamp_ms;
    const auto gaps = static_cast<std::uint32_t>(std::max<std::size_t>(records.size() - 1, 1));
    return {span + std::max<std::uint32_t>(span / gaps, 1), records.back().sequence - records.front().sequence + 1};
}

}  // namespace ifwatch::cases
