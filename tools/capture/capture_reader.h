#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "capture/byte_stream.h"

namespace ifwatch::capture {

/// An interface that packets of a capture come from; in a classic PCAP file there is one. Texts are cut at
/// MAX_TEXT octets and are empty where the file has none.
struct capture_interface {
    static constexpr std::size_t MAX_TEXT = 255;

    std::uint32_t link_type = 0;  // of the tcpdump.org list
    std::string name = {};
    std::string description = {};
    std::string comment = {};
};

/// One packet. What it points to stays until the next one is read.
struct captured_packet {
    /// Of a longer packet the first octets are kept: more than a record holds, with any link header in front.
    static constexpr std::size_t MAX_KEPT = 8192 + 256;

    std::uint64_t number = 0;                  // of the packets of this stream, from 1
    std::uint64_t offset = 0;                  // of its header in the stream
    std::size_t interface_id = 0;              // of the interfaces of this section, from 0
    std::uint32_t section = 0;                 // from 0; with a new one interfaces count anew
    std::optional<std::int64_t> time_ns = {};  // since 1970; a simple packet of pcapng has none
    std::uint32_t original_length = 0;         // on the line, without a check sequence
    std::uint32_t captured_length = 0;         // of those in the file, more than data where that was cut
    std::span<std::uint8_t> data = {};         // without a check sequence
    std::uint32_t flags = 0;                   // as pcapng has them: bits 1-0 are 1 received, 2 sent, 0 not told
    std::uint64_t lost = 0;                // packets that were lost between the one before of its interface and this
    std::optional<std::uint64_t> id = {};  // the number that whoever wrote it gave it
    std::string_view comment = {};         // the first; cut at capture_interface::MAX_TEXT
};

/// What came of reading a packet.
enum class packet_read : std::uint8_t {
    PACKET,
    END,
    DAMAGED,  // nothing can be read behind this place
};

class packet_format;

/// Reads a capture, classic PCAP (pcap-savefile(5), either byte order, micro- or nanoseconds) or pcapng
/// (draft-ietf-opsawg-pcapng), from its first octet on. Its memory is bounded whatever the lengths in it claim.
class capture_reader {
public:
    explicit capture_reader(byte_stream& stream);
    ~capture_reader();
    capture_reader(const capture_reader&) = delete;
    capture_reader& operator=(const capture_reader&) = delete;
    capture_reader(capture_reader&&) = delete;
    capture_reader& operator=(capture_reader&&) = delete;

    /// Reads the next packet. An empty stream is damaged, not at its end.
    packet_read next(captured_packet& packet);

    /// The interface of the packet that was just read. In a classic PCAP file also without one, behind next().
    [[nodiscard]] const capture_interface& interface_of(const captured_packet& packet) const;

    /// Interfaces that this section has described so far; those of a pcapng file usually all stand at its beginning.
    [[nodiscard]] std::size_t interface_count() const;

    /// Where and what is wrong, of a damaged capture, in one line: "packet 2 at offset 100: 60 octets announced, 20
    /// held".
    [[nodiscard]] const std::string& error() const;

private:
    byte_stream& stream_;
    std::unique_ptr<packet_format> format_;  // found with the first packet
    packet_read last_ = packet_read::PACKET;
};

/// "packet 2 at offset 100", for a message about a packet.
[[nodiscard]] std::string packet_place(std::uint64_t number, std::uint64_t offset);

}  // namespace ifwatch::capture
