#include "inet/ip_address.h"

#include "base/format.h"

namespace ifwatch {

std::string_view ip_to_string(text_buffer<IP_ADDRESS_WIDTH>& buffer, octets address) {
    buffer.used = 0;
    if (address.be32(0) != 0) {
        print_to<"%d.%d.%d.%d">(buffer, address[0], address[1], address[2], address[3]);
    }
    return buffer.text();
}

}  // namespace ifwatch
