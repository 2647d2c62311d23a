#include "traffic.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <span>

#include "base/byte_order.h"
#include "cases/case_file.h"
#include "cases/record_source.h"

namespace ifwatch::bench {

namespace {

using frame = std::vector<std::uint8_t>;

constexpr std::size_t BLOCK_RECORDS = 200000;
constexpr std::size_t ETHERNET = 14;
constexpr std::size_t IP = 20;
constexpr std::size_t TCP = 20;
constexpr std::size_t UDP = 8;
constexpr std::size_t TIME_OFFSET = 4;  // in a record
constexpr std::size_t SEQUENCE_OFFSET = 16;

constexpr std::array<std::uint8_t, ETHERNET> STATIONS = {0x02, 0x00, 0x01, 0x01, 0x02, 0x03, 0x02,
                                                         0x00, 0x02, 0x05, 0x0A, 0x10, 0x08, 0x00};

std::uint32_t sum16(std::span<const std::uint8_t> octets, std::uint32_t sum) {
    for (std::size_t i = 0; i < octets.size(); ++i) {
        sum += i % 2 == 0 ? static_cast<std::uint32_t>(octets[i]) << 8 : octets[i];
    }
    return sum;
}

/// RFC 1071.
std::uint16_t checksum(std::span<const std::uint8_t> octets, std::uint32_t sum = 0) {
    sum = sum16(octets, sum);
    while (sum > 0xFFFF) {
        sum = (sum >> 16) + (sum & 0xFFFF);
    }
    return static_cast<std::uint16_t>(~sum);
}

/// One end of a conversation, and the next octet that it sends.
struct end_point {
    std::uint32_t address;
    std::uint16_t port;
    std::uint32_t sequence;
};

/// What one end sends to the other.
struct direction {
    end_point& from;
    const end_point& to;
};

/// Makes the frames of a few conversations out of one row of random numbers, so that every run sees the same.
class frame_maker {
public:
    frame_maker();

    frame tcp(std::size_t length);
    frame udp(std::size_t length, int port);
    frame icmp(std::size_t length);
    frame arp();
    frame mixed();

private:
    std::uint32_t random() { return static_cast<std::uint32_t>(random_()); }
    std::size_t between(std::size_t low, std::size_t high) { return low + random() % (high - low + 1); }
    frame ip(std::size_t length, std::uint8_t protocol, const direction& way);
    direction next_direction();
    std::size_t mixed_length();

    std::mt19937 random_{1};  // the same in every run
    std::array<std::array<end_point, 2>, 64> conversations_{};
};

frame_maker::frame_maker() {
    for (auto& [client, server] : conversations_) {
        const auto port = [this] { return static_cast<std::uint16_t>(between(40000, 65000)); };
        client = {.address = 0xC0A80000 + random() % 0x10000, .port = port(), .sequence = random()};
        server = {.address = 0xC6330000 + random() % 0x10000, .port = port(), .sequence = random()};
    }
}

direction frame_maker::next_direction() {
    auto& [client, server] = conversations_[random() % conversations_.size()];
    return random() % 2 == 0 ? direction{client, server} : direction{server, client};
}

/// An Ethernet frame with an IP header and random octets behind it.
frame frame_maker::ip(std::size_t length, std::uint8_t protocol, const direction& way) {
    frame made(length);
    std::ranges::generate(made, [this] { return static_cast<std::uint8_t>(random()); });
    std::ranges::copy(STATIONS, made.begin());
    std::uint8_t* const header = &made[ETHERNET];
    std::fill_n(header, IP, std::uint8_t{0});
    header[0] = 0x45;
    store_be16(&header[2], static_cast<std::uint16_t>(length - ETHERNET));
    store_be16(&header[4], static_cast<std::uint16_t>(random()));
    header[6] = 0x40;  // not to be fragmented
    header[8] = 64;
    header[9] = protocol;
    store_be32(&header[12], way.from.address);
    store_be32(&header[16], way.to.address);
    store_be16(&header[10], checksum({header, IP}));
    return made;
}

/// The checksum of a segment with the addresses and the protocol of its IP header.
std::uint16_t segment_checksum(const frame& made) {
    const auto segment = std::span(made).subspan(ETHERNET + IP);
    const auto addresses = std::span(made).subspan(ETHERNET + 12, 8);
    return checksum(segment, sum16(addresses, made[ETHERNET + 9] + static_cast<std::uint32_t>(segment.size())));
}

frame frame_maker::tcp(std::size_t length) {
    const direction way = next_direction();
    frame made = ip(length, 6, way);
    std::uint8_t* const header = &made[ETHERNET + IP];
    store_be16(&header[0], way.from.port);
    store_be16(&header[2], way.to.port);
    store_be32(&header[4], way.from.sequence);
    store_be32(&header[8], way.to.sequence);
    way.from.sequence += static_cast<std::uint32_t>(length - ETHERNET - IP - TCP);
    header[12] = TCP / 4 << 4;
    header[13] = 0x18;  // ACK and PSH
    store_be32(&header[16], 0);
    store_be16(&header[16], segment_checksum(made));
    return made;
}

frame frame_maker::udp(std::size_t length, int port) {
    const direction way = next_direction();
    frame made = ip(length, 17, way);
    std::uint8_t* const header = &made[ETHERNET + IP];
    store_be16(&header[0], way.from.port);
    store_be16(&header[2], port != 0 ? static_cast<std::uint16_t>(port) : way.to.port);
    store_be16(&header[4], static_cast<std::uint16_t>(length - ETHERNET - IP));
    store_be16(&header[6], 0);
    store_be16(&header[6], segment_checksum(made));
    return made;
}

frame frame_maker::icmp(std::size_t length) {
    frame made = ip(length, 1, next_direction());
    store_be32(&made[ETHERNET + IP], 0x08000000);  // an echo request
    const auto message = std::span(made).subspan(ETHERNET + IP);
    store_be16(&message[2], checksum(message));
    return made;
}

frame frame_maker::arp() {
    constexpr std::array<std::uint8_t, 8> request = {0, 1, 8, 0, 6, 4, 0, 1};
    frame made(60);
    std::ranges::copy(STATIONS, made.begin());
    made[13] = 0x06;
    std::ranges::copy(request, &made[ETHERNET]);
    std::generate_n(&made[ETHERNET + 8], 20, [this] { return static_cast<std::uint8_t>(random()); });
    return made;
}

std::size_t frame_maker::mixed_length() {
    const std::uint32_t choice = random() % 10;
    if (choice < 5) {
        return between(60, 100);
    }
    return choice < 8 ? between(500, 600) : between(1400, 1514);
}

frame frame_maker::mixed() {
    const std::uint32_t choice = random() % 100;
    const std::size_t length = mixed_length();
    if (choice < 80) {
        return tcp(length);
    }
    if (choice < 95) {
        return udp(length, 0);
    }
    return choice < 98 ? icmp(length) : arp();
}

/// The length octets of a BER element that holds so much, always three.
void put_ber(frame& made, std::size_t& at, std::uint8_t identifier, std::size_t content) {
    made[at] = identifier;
    made[at + 1] = 0x82;
    store_be16(&made[at + 2], static_cast<std::uint16_t>(content));
    at += 4;
}

/// As many levels as fit, up to the deepest that is shown; then numbers of four octets.
frame nested(std::size_t length) {
    constexpr std::size_t deepest = 32;
    constexpr std::size_t level = 4;
    constexpr std::size_t number = 6;
    constexpr std::size_t headers = ETHERNET + IP + UDP;
    frame made = frame_maker().udp(length, 161);
    const std::size_t levels = std::min(deepest, (length - headers) / level);
    std::size_t at = headers;
    for (std::size_t i = 0; i < levels; ++i) {
        put_ber(made, at, 0x30, length - at - level);
    }
    for (; at + number <= length; at += number) {
        made[at] = 2;
        made[at + 1] = 4;
    }
    return made;
}

frame tables(std::size_t length) {
    constexpr std::array<std::uint8_t, 4> last_cause = {0x08, 0x02, 0x80, 0xFF};  // interworking
    frame made = {0x02, 0x81, 0x02, 0x04, 0x08, 0x01, 0x03, 0x45};                // LAPD, call reference, DISCONNECT
    while (made.size() + last_cause.size() <= length) {
        made.insert(made.end(), last_cause.begin(), last_cause.end());
    }
    made.resize(length);
    return made;
}

/// NetWare servers of a type that stands last in its table, as many as are shown; behind them zeros.
frame services(std::size_t length) {
    constexpr std::array<std::uint8_t, 32> headers = {
        0xFF, 0xFF, 0,    0,    0,    4,                                                  // IPX: type 4
        0,    0,    0x0A, 0x01, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x04, 0x52,           // to
        0,    0,    0x0A, 0x01, 0x02, 0,    0x02, 0x05, 0x0A, 0x10, 0x40, 0x03, 0, 0x02,  // from; a response
    };
    constexpr std::array<std::uint8_t, 8> unknown_server = {0, 0, 'S', 'E', 'R', 'V', 'E', 'R'};
    constexpr std::size_t most = 7;
    constexpr std::size_t entry = 64;
    frame made(length);
    std::ranges::copy(STATIONS, made.begin());
    store_be16(&made[ETHERNET - 2], 0x8137);
    std::ranges::copy(headers, &made[ETHERNET]);
    store_be16(&made[ETHERNET + 2], static_cast<std::uint16_t>(length - ETHERNET));
    for (std::size_t i = 0, at = ETHERNET + headers.size(); i < most && at + entry <= length; ++i, at += entry) {
        std::ranges::copy(unknown_server, &made[at]);
    }
    return made;
}

void append(traffic& block, const frame& data) {
    block.starts.push_back(block.octets.size());
    const auto flags = static_cast<std::uint32_t>(block.starts.size() % 2);  // sent and received in turn
    cases::append_record(
        block.octets, {.flags = flags, .original_length = static_cast<std::uint16_t>(data.size()), .data = data}, -1);
}

bool read_case(std::string_view path, traffic& found, std::string& error) {
    cases::trace_case parsed;
    if (!cases::read_case_file(std::string(path), parsed, error)) {
        return false;
    }
    found.channel_type = parsed.channel_type;
    for (const cases::case_record& record : parsed.records) {
        found.starts.push_back(found.octets.size());
        cases::append_record(found.octets, record, -1);
    }
    return true;
}

struct named_kind {
    std::string_view prefix;
    frame_kind kind;
};
constexpr named_kind KINDS[] = {
    {"tcp=", frame_kind::TCP},
    {"nested=", frame_kind::NESTED},
    {"tables=", frame_kind::TABLES},
    {"services=", frame_kind::SERVICES},
};

}  // namespace

std::vector<std::uint8_t> make_frame(frame_kind kind, std::size_t length) {
    switch (kind) {
        case frame_kind::NESTED:
            return nested(length);
        case frame_kind::TABLES:
            return tables(length);
        case frame_kind::SERVICES:
            return services(length);
        default:
            return frame_maker().tcp(length);
    }
}

int channel_type_of(frame_kind kind) { return kind == frame_kind::TABLES ? 0 : 6; }

traffic make_mixed_frames(std::size_t records) {
    traffic block{.channel_type = 6};
    frame_maker maker;
    for (std::size_t i = 0; i < records; ++i) {
        append(block, maker.mixed());
    }
    return block;
}

bool find_traffic(std::string_view source, traffic& found, std::string& error) {
    if (source == "mixed") {
        found = make_mixed_frames(BLOCK_RECORDS);
        return true;
    }
    for (const named_kind& known : KINDS) {
        if (!source.starts_with(known.prefix)) {
            continue;
        }
        std::size_t length = 0;
        std::from_chars(source.data() + known.prefix.size(), source.data() + source.size(), length);
        if (length < 64 || length > 8192) {
            error = std::string(source) + ": a length is from 64 to 8192";
            return false;
        }
        found.channel_type = channel_type_of(known.kind);
        append(found, make_frame(known.kind, length));
        return true;
    }
    return read_case(source, found, error);
}

namespace {

/// Whether a usage, in which options are in brackets with a value behind them, has the option.
bool has_option(std::string_view usage, std::string_view option) {
    const std::size_t at = usage.find(option);
    return option.starts_with("--") && at != std::string_view::npos &&
           usage.substr(at + option.size()).starts_with(' ');
}

}  // namespace

bool read_arguments(std::span<char*> arguments, std::string_view usage, feeding& what) {
    if (arguments.size() == 5) {
        what.option = arguments[1];
        what.number = std::strtoul(arguments[2], nullptr, 10);
        arguments = arguments.subspan(2);
    }
    const bool known = what.option.empty() || has_option(usage, what.option);
    std::string error("usage: ");
    error.append(usage);
    if (arguments.size() == 3 && known) {
        if (find_traffic(arguments[2], what.block, error)) {
            what.count = std::strtoul(arguments[1], nullptr, 10);
            return true;
        }
        error.insert(0, std::string(usage.substr(0, usage.find(' '))).append(": "));
    }
    static_cast<void>(std::fprintf(stderr, "%s\n", error.c_str()));
    return false;
}

void number_records(traffic& block, std::uint32_t first) {
    for (const std::size_t start : block.starts) {
        store_be32(&block.octets[start + TIME_OFFSET], 1000 + first);
        store_be32(&block.octets[start + SEQUENCE_OFFSET], first);
        ++first;
    }
}

}  // namespace ifwatch::bench
