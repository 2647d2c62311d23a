#include "sim/sent_text.h"

#include <arpa/inet.h>

#include "sim/filter.h"

namespace ifwatch::sim {

std::optional<capture::sent_rule> parse_sent_rule(const std::string& text) {
    in_addr host{};
    capture::mac_address mac{};
    if (text == "none") {
        return capture::sent_nothing{};
    }
    if (text == "all") {
        return capture::sent_everything{};
    }
    if (inet_pton(AF_INET, text.c_str(), &host) == 1) {
        return std::uint32_t{ntohl(host.s_addr)};
    }
    return parse_mac(text, mac) ? std::optional<capture::sent_rule>(mac) : std::nullopt;
}

}  // namespace ifwatch::sim
