#include "capture/pcapng_reader.h"

#include <algorithm>

#include "base/byte_order.h"

namespace ifwatch::capture {

namespace {

constexpr int VERSION_MAJOR = 1;
constexpr std::size_t SECTION_BODY = 16;  // in front of the options
constexpr std::size_t INTERFACE_BODY = 8;
constexpr std::uint32_t PACKET_BODY = 20;  // in front of the octets
constexpr std::uint32_t SIMPLE_PACKET_BODY = 4;
constexpr std::uint16_t DROPS_UNKNOWN = 0xFFFF;
constexpr std::uint32_t BITS_PER_OCTET = 8;

constexpr std::uint16_t INTERFACE_FCS_LENGTH = 13;  // an option: bits

/// Of a packet's flags: octets of check sequence at its end; 0: as the interface says.
constexpr std::uint32_t check_sequence_of(std::uint32_t flags) { return flags >> 5 & 0xF; }

bool is_packet(std::uint32_t type) {
    return type == BLOCK_ENHANCED_PACKET || type == BLOCK_SIMPLE_PACKET || type == BLOCK_PACKET;
}

std::string_view text_of(std::span<const std::uint8_t> value) {
    const auto kept = value.first(std::min(value.size(), capture_interface::MAX_TEXT));
    // Octets and characters are the same storage; the cast only changes how they are named.
    return {reinterpret_cast<const char*>(kept.data()), kept.size()};
}

}  // namespace

bool is_pcapng(byte_stream& stream) {
    const auto type = stream.hold(sizeof(std::uint32_t));
    return type.size() == sizeof(std::uint32_t) && load_be32(type.data()) == BLOCK_SECTION;
}

std::uint16_t pcapng_format::half(const std::uint8_t* at) const {
    return big_endian_ ? load_be16(at) : swap16(load_be16(at));
}
std::uint32_t pcapng_format::word(const std::uint8_t* at) const { return big_endian_ ? load_be32(at) : load_le32(at); }
std::uint64_t pcapng_format::long_word(const std::uint8_t* at) const {
    const std::uint64_t first = word(at);
    const std::uint64_t second = word(at + 4);
    return big_endian_ ? first << 32 | second : second << 32 | first;
}

const capture_interface& pcapng_format::interface_of(const captured_packet& packet) const {
    return packet.interface_id < interfaces_.size() ? interfaces_[packet.interface_id].described : none_;
}

bool pcapng_format::fail(const open_block& block, const std::string& reason) {
    damaged(
        is_packet(block.type) ? packet_place(number_, block.offset) : "block at offset " + std::to_string(block.offset),
        reason);
    return false;
}

packet_read pcapng_format::next(captured_packet& packet) {
    while (true) {
        stream().skip(behind_);
        behind_ = 0;
        open_block block;
        if (const packet_read opened = open(block); opened != packet_read::PACKET) {
            return opened;
        }
        if (is_packet(block.type)) {
            return read_packet(block, packet) ? packet_read::PACKET : packet_read::DAMAGED;
        }
        if (!take(block)) {
            return packet_read::DAMAGED;
        }
    }
}

/// Reads the header of the next block and as much of its body as can be held. PACKET: there is one.
packet_read pcapng_format::open(open_block& block) {
    block.offset = stream().offset();
    const auto header = stream().hold(BLOCK_HEADER);
    if (header.empty() && stream().error() == 0) {
        return packet_read::END;
    }
    if (header.size() < BLOCK_HEADER) {
        fail(block, "its header is " + cut_off(BLOCK_HEADER, header.size()));
        return packet_read::DAMAGED;
    }
    block.type = word(header.data());
    if (block.type == BLOCK_SECTION && !read_byte_order(block)) {
        return packet_read::DAMAGED;
    }
    block.total = word(&stream().hold(BLOCK_HEADER)[4]);
    number_ += is_packet(block.type) ? 1 : 0;
    return hold_body(block) ? packet_read::PACKET : packet_read::DAMAGED;
}

bool pcapng_format::read_byte_order(const open_block& block) {
    constexpr std::size_t wanted = BLOCK_HEADER + sizeof BYTE_ORDER_MAGIC;
    const auto start = stream().hold(wanted);
    if (start.size() < wanted) {
        return fail(block, "its header is " + cut_off(wanted, start.size()));
    }
    big_endian_ = load_be32(&start[BLOCK_HEADER]) == BYTE_ORDER_MAGIC;
    return word(&start[BLOCK_HEADER]) == BYTE_ORDER_MAGIC || fail(block, "its byte order is not known");
}

bool pcapng_format::hold_body(open_block& block) {
    if (block.total < MIN_BLOCK || block.total % 4 != 0) {
        return fail(block, "no block can have a length of " + std::to_string(block.total));
    }
    block.whole = block.total <= byte_stream::CAPACITY;
    const std::size_t wanted = std::min<std::size_t>(block.total, byte_stream::CAPACITY);
    const auto held = stream().hold(wanted);
    if (held.size() < wanted) {
        return fail(block, announced_and_held(block.total, held.size()));
    }
    behind_ = block.whole ? block.total : 0;
    block.body = held.subspan(BLOCK_HEADER, wanted - (block.whole ? MIN_BLOCK : BLOCK_HEADER));
    return !block.whole || check_trailer(block, held.last(BLOCK_TRAILER));
}

bool pcapng_format::check_trailer(const open_block& block, std::span<const std::uint8_t> trailer) {
    const std::uint32_t again = word(trailer.data());
    return again == block.total || fail(block, "its length is " + std::to_string(block.total) + " in front, but " +
                                                   std::to_string(again) + " at its end");
}

/// Goes from `count` octets into a block that is not held as a whole to its end.
bool pcapng_format::skip_rest(const open_block& block, std::uint64_t count) {
    const std::uint64_t skipped = stream().skip(block.total - BLOCK_TRAILER - count);
    const auto trailer = stream().hold(BLOCK_TRAILER);
    if (trailer.size() < BLOCK_TRAILER) {
        return fail(block, announced_and_held(block.total, count + skipped + trailer.size()));
    }
    if (!check_trailer(block, trailer)) {
        return false;
    }
    stream().skip(BLOCK_TRAILER);
    return true;
}

/// Reads a block that is no packet.
bool pcapng_format::take(open_block& block) {
    const bool right = block.type == BLOCK_SECTION     ? read_section(block)
                       : block.type == BLOCK_INTERFACE ? read_interface(block)
                                                       : true;
    return right && (block.whole || skip_rest(block, 0));
}

/// Hands each option, a code and its value, to `take_option`. False for one that is longer than what is left.
template <class Take>
bool pcapng_format::read_options(const open_block& block, std::span<const std::uint8_t> options, Take take_option) {
    while (options.size() >= OPTION_HEADER) {
        const std::uint16_t code = half(options.data());
        const std::size_t length = half(&options[2]);
        options = options.subspan(OPTION_HEADER);
        if (code == OPTION_END) {
            return true;
        }
        if (length > options.size()) {
            return !block.whole ||
                   fail(block, "option " + std::to_string(code) + ": " + announced_and_held(length, options.size()));
        }
        take_option(code, options.first(length));
        options = options.subspan(static_cast<std::size_t>(std::min<std::uint64_t>(padded(length), options.size())));
    }
    return true;
}

bool pcapng_format::read_section(const open_block& block) {
    if (block.body.size() < SECTION_BODY) {
        return fail(block, "a section header of " + std::to_string(block.total) + " octets is too short");
    }
    const int major = half(&block.body[4]);
    if (major != VERSION_MAJOR) {
        return fail(block, "version " + std::to_string(major) + "." + std::to_string(half(&block.body[6])) +
                               " of the format is not known");
    }
    interfaces_.clear();
    ++sections_;
    return true;
}

bool pcapng_format::read_interface(const open_block& block) {
    if (block.body.size() < INTERFACE_BODY) {
        return fail(block, "an interface description of " + std::to_string(block.total) + " octets is too short");
    }
    if (interfaces_.size() == MAX_INTERFACES) {
        return fail(block, "a section has more than " + std::to_string(MAX_INTERFACES) + " interfaces");
    }
    known_interface& added = interfaces_.emplace_back();
    capture_interface& described = added.described;
    described.link_type = half(block.body.data());
    added.snapshot_length = word(&block.body[4]);
    const auto take_option = [&](std::uint16_t code, std::span<const std::uint8_t> value) {
        if (code == INTERFACE_NAME) {
            described.name = text_of(value);
        } else if (code == INTERFACE_DESCRIPTION_TEXT) {
            described.description = text_of(value);
        } else if (code == OPTION_COMMENT && described.comment.empty()) {
            described.comment = text_of(value);
        } else if (code == INTERFACE_TIME_RESOLUTION && value.size() == 1) {
            added.times.resolution = value[0];
        } else if (code == INTERFACE_FCS_LENGTH && value.size() == 1) {
            added.check_sequence = value[0] / BITS_PER_OCTET;
        } else if (code == INTERFACE_TIME_OFFSET && value.size() == sizeof(std::int64_t)) {
            added.times.offset_s = static_cast<std::int64_t>(long_word(value.data()));
        }
    };
    return read_options(block, block.body.subspan(INTERFACE_BODY), take_option);
}

bool pcapng_format::find_interface(const open_block& block, std::uint32_t id, const known_interface*& found) {
    if (id >= interfaces_.size()) {
        return fail(block, "interface " + std::to_string(id) + " is not described");
    }
    found = &interfaces_[id];
    return true;
}

bool pcapng_format::find_simple_packet(const open_block& block, packet_layout& layout) {
    const known_interface* from = nullptr;
    if (!find_interface(block, 0, from)) {
        return false;
    }
    const std::uint32_t limit = from->snapshot_length != 0 ? from->snapshot_length : ~std::uint32_t{0};
    layout.front = SIMPLE_PACKET_BODY;
    layout.original = word(block.body.data());
    layout.captured = std::min(layout.original, limit);
    layout.check_sequence = from->check_sequence;
    return true;
}

bool pcapng_format::find_packet(const open_block& block, captured_packet& packet, packet_layout& layout) {
    const bool simple = block.type == BLOCK_SIMPLE_PACKET;
    if (block.body_length() < (simple ? SIMPLE_PACKET_BODY : PACKET_BODY)) {
        return fail(block, "a packet block of " + std::to_string(block.total) + " octets is too short");
    }
    if (simple) {
        return find_simple_packet(block, layout);
    }
    const std::uint8_t* const body = block.body.data();
    packet.interface_id = word(body);
    if (block.type == BLOCK_PACKET) {
        const std::uint16_t drops = half(body + 2);
        packet.interface_id = half(body);
        packet.lost = drops != DROPS_UNKNOWN ? drops : 0;
    }
    const known_interface* from = nullptr;
    if (!find_interface(block, static_cast<std::uint32_t>(packet.interface_id), from)) {
        return false;
    }
    packet.time_ns = nanoseconds(std::uint64_t{word(body + 4)} << 32 | word(body + 8), from->times);
    layout.front = PACKET_BODY;
    layout.captured = word(body + 12);
    layout.original = std::max(word(body + 16), layout.captured);
    layout.check_sequence = from->check_sequence;
    return true;
}

bool pcapng_format::read_packet(open_block& block, captured_packet& packet) {
    packet = {.number = number_, .offset = block.offset, .section = sections_ - 1};
    packet_layout layout;
    if (!find_packet(block, packet, layout)) {
        return false;
    }
    const std::uint32_t room = block.body_length() - layout.front;
    if (layout.captured > room) {
        return fail(block, announced_and_held(layout.captured, room));
    }
    if (block.whole) {
        // Within: the body is padded, too.
        const auto options_at = static_cast<std::size_t>(layout.front + padded(layout.captured));
        packet.data = block.body.subspan(layout.front, layout.captured);
        if (!read_packet_options(block, block.body.subspan(options_at), layout, packet)) {
            return false;
        }
    } else if (!read_large_packet(block, layout, packet)) {
        return false;
    }
    packet.original_length = layout.original - std::min(layout.original, layout.check_sequence);
    packet.captured_length = std::min(layout.captured, packet.original_length);
    packet.data = packet.data.first(
        std::min({packet.data.size(), std::size_t{packet.captured_length}, captured_packet::MAX_KEPT}));
    return true;
}

/// Reads a packet whose block does not fit the stream's buffer: its first octets are kept aside.
bool pcapng_format::read_large_packet(open_block& block, packet_layout& layout, captured_packet& packet) {
    const auto kept =
        block.body.subspan(layout.front, std::min<std::size_t>(layout.captured, captured_packet::MAX_KEPT));
    aside_.assign(kept.begin(), kept.end());
    packet.data = aside_;
    const std::uint64_t options_at = BLOCK_HEADER + layout.front + padded(layout.captured);
    const std::uint64_t skipped = stream().skip(options_at);
    const std::uint64_t length = block.total - BLOCK_TRAILER - options_at;
    const auto options =
        stream().hold(static_cast<std::size_t>(std::min<std::uint64_t>(length, byte_stream::CAPACITY)));
    if (!read_packet_options(block, options, layout, packet)) {
        return false;
    }
    comment_ = packet.comment;
    packet.comment = comment_;
    return skip_rest(block, skipped);
}

bool pcapng_format::read_packet_options(const open_block& block, std::span<const std::uint8_t> options,
                                        packet_layout& layout, captured_packet& packet) {
    const auto take_option = [&](std::uint16_t code, std::span<const std::uint8_t> value) {
        if (code == OPTION_COMMENT && packet.comment.empty()) {
            packet.comment = text_of(value);
        } else if (code == PACKET_FLAGS && value.size() == sizeof(std::uint32_t)) {
            packet.flags = word(value.data());
        } else if (code == PACKET_DROP_COUNT && value.size() == sizeof(std::uint64_t)) {
            packet.lost = long_word(value.data());
        } else if (code == PACKET_ID && value.size() == sizeof(std::uint64_t)) {
            packet.id = long_word(value.data());
        }
    };
    const bool right = block.type == BLOCK_SIMPLE_PACKET || read_options(block, options, take_option);
    const std::uint32_t told = check_sequence_of(packet.flags);
    layout.check_sequence = told != 0 ? told : layout.check_sequence;
    return right;
}

}  // namespace ifwatch::capture
