#include "read/report/station.h"

#include "base/format.h"
#include "base/text_sink.h"

namespace ifwatch::reporting {

std::string station_text(std::uint64_t station) {
    text_buffer<32> text;
    const auto octet = [station](int shift) { return static_cast<std::uint32_t>(station >> shift & 0xFF); };
    print_to<"%02x:%02x:%02x:%02x:%02x:%02x">(text, octet(40), octet(32), octet(24), octet(16), octet(8), octet(0));
    return std::string(text.text());
}

}  // namespace ifwatch::reporting
