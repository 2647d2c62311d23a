#include "capture/sent_text.h"

#include <arpa/inet.h>

#include <algorithm>
#include <iterator>

#include "command_line/text_parts.h"

namespace ifwatch::capture {

bool parse_mac(std::string_view text, mac_address& address) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c != ':' && c != '-' && c != '.'; });
    if (digits.size() != 2 * address.size()) {
        return false;
    }
    for (std::size_t i = 0; i < address.size(); ++i) {
        const auto octet = parse_number("0x" + digits.substr(2 * i, 2), 0, 0xFF);
        if (!octet) {
            return false;
        }
        address[i] = static_cast<std::uint8_t>(*octet);
    }
    return true;
}

std::optional<sent_rule> parse_sent_rule(const std::string& text) {
    in_addr host{};
    mac_address mac{};
    if (text == "none") {
        return sent_nothing{};
    }
    if (text == "all") {
        return sent_everything{};
    }
    if (inet_pton(AF_INET, text.c_str(), &host) == 1) {
        return std::uint32_t{ntohl(host.s_addr)};
    }
    return parse_mac(text, mac) ? std::optional<sent_rule>(mac) : std::nullopt;
}

}  // namespace ifwatch::capture
