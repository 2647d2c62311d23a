#include "sim/filter.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "capture/sent_text.h"
#include "command_line/text_parts.h"

namespace ifwatch::sim {

namespace {

std::optional<std::uint32_t> parse_host(const std::string& text) {
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) == 1) {
        return ntohl(address.s_addr);
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    addrinfo* found = nullptr;
    if (getaddrinfo(text.c_str(), nullptr, &hints, &found) != 0 || found == nullptr) {
        return std::nullopt;
    }
    // AF_INET was asked for, so the generic address is one of IPv4.
    const std::uint32_t host = ntohl(reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr);
    freeaddrinfo(found);
    return host;
}

/// A field that may be left out; false when it is there and wrong.
bool parse_host_field(const std::string& text, std::optional<std::uint32_t>& field) {
    field = text.empty() ? std::nullopt : parse_host(text);
    return text.empty() || field;
}

bool parse_number_field(const std::string& text, int maximum, std::optional<int>& field) {
    const auto value = parse_number(text, 0, maximum);
    field = value ? std::optional<int>(static_cast<int>(*value)) : std::nullopt;
    return text.empty() || field;
}

/// ipsrc:ipdst:protocol:srcport:dstport, of which any may be left out.
bool parse_session(std::string_view text, ip_session& session) {
    std::array<std::string, 5> fields;
    std::size_t count = 0;
    for (bool more = true; more; ++count) {
        if (count == fields.size()) {
            return false;
        }
        const std::size_t colon = text.find(':');
        fields[count] = text.substr(0, colon);
        more = colon != std::string_view::npos;
        text.remove_prefix(more ? colon + 1 : text.size());
    }
    return parse_host_field(fields[0], session.source) && parse_host_field(fields[1], session.destination) &&
           parse_number_field(fields[2], 0xFF, session.protocol) &&
           parse_number_field(fields[3], 0xFFFF, session.source_port) &&
           parse_number_field(fields[4], 0xFFFF, session.destination_port);
}

bool parse_term(const filter_entry& entry, filter_term& term) {
    std::string_view text = entry.text;
    term.kind = entry.kind;
    term.negated = text.starts_with('!');
    text.remove_prefix(term.negated ? 1 : 0);
    switch (entry.kind) {
        case 'I':
        case 'B':
            return parse_session(text, term.session);
        case 's':
        case 'd':
            return capture::parse_mac(text, term.address);
        case 'l':
            return text.empty();
        default:
            return false;
    }
}

template <class Value>
bool fits(const std::optional<Value>& wanted, Value value) {
    return !wanted || *wanted == value;
}

bool fits_one_way(const ip_session& session, const frame_fields::ip_header& ip,
                  const std::optional<frame_fields::port_pair>& ports) {
    if (!fits(session.source, ip.source) || !fits(session.destination, ip.destination) ||
        !fits(session.protocol, ip.protocol)) {
        return false;
    }
    if (!ports) {
        return !session.source_port && !session.destination_port;
    }
    return fits(session.source_port, ports->source) && fits(session.destination_port, ports->destination);
}

bool fits_session(const ip_session& session, const frame_fields& fields, bool both_ways) {
    if (!fields.ip) {
        return false;
    }
    if (fits_one_way(session, *fields.ip, fields.ports)) {
        return true;
    }
    const ip_session back = {session.destination, session.source, session.protocol, session.destination_port,
                             session.source_port};
    return both_ways && fits_one_way(back, *fields.ip, fields.ports);
}

bool fits_term(const filter_term& term, const frame_fields& fields) {
    switch (term.kind) {
        case 's':
            return fields.mac && fields.mac->source == term.address;
        case 'd':
            return fields.mac && fields.mac->destination == term.address;
        case 'l':
            return fields.llc;
        default:
            return fits_session(term.session, fields, term.kind == 'B');
    }
}

}  // namespace

bool build_filter(std::span<const filter_entry> entries, frame_filter& filter, std::string& error) {
    bool new_group = true;
    for (const filter_entry& entry : entries) {
        if (entry.kind == 'o') {
            new_group = true;
            continue;
        }
        filter_term term;
        if (!parse_term(entry, term)) {
            error = "bad filter -" + std::string(1, entry.kind) + " " + in_quotes(entry.text);
            return false;
        }
        if (new_group) {
            filter.groups.emplace_back();
            new_group = false;
        }
        filter.groups.back().push_back(term);
    }
    return true;
}

bool passes(const frame_filter& filter, const frame_fields& fields) {
    const auto term_holds = [&](const filter_term& term) { return fits_term(term, fields) != term.negated; };
    const auto group_holds = [&](const std::vector<filter_term>& group) {
        return std::all_of(group.begin(), group.end(), term_holds);
    };
    return filter.groups.empty() || std::any_of(filter.groups.begin(), filter.groups.end(), group_holds);
}

}  // namespace ifwatch::sim
