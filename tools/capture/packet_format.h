#pragma once

#include <string>

#include "capture/capture_reader.h"

namespace ifwatch::capture {

/// What reads the packets of one format. The stream stands at its first octet.
class packet_format {
public:
    explicit packet_format(byte_stream& stream) : stream_(stream) {}
    virtual ~packet_format() = default;
    packet_format(const packet_format&) = delete;
    packet_format& operator=(const packet_format&) = delete;
    packet_format(packet_format&&) = delete;
    packet_format& operator=(packet_format&&) = delete;

    /// Reads the next packet: once it was not PACKET, not again.
    virtual packet_read next(captured_packet& packet) = 0;

    /// Of the packet that was read last.
    [[nodiscard]] virtual const capture_interface& interface_of(const captured_packet& packet) const = 0;

    /// Of this section, so far.
    [[nodiscard]] virtual std::size_t interface_count() const { return 1; }

    [[nodiscard]] const std::string& error() const { return error_; }

protected:
    [[nodiscard]] byte_stream& stream() const { return stream_; }

    /// Notes what is wrong where, "packet 2 at offset 100", unless the stream could not be read.
    packet_read damaged(const std::string& place, const std::string& reason);

private:
    byte_stream& stream_;
    std::string error_;
};

/// "cut off: 3 of 16 octets held".
[[nodiscard]] std::string cut_off(std::uint64_t whole, std::uint64_t held);

/// "60 octets announced, 20 held".
[[nodiscard]] std::string announced_and_held(std::uint64_t announced, std::uint64_t held);

}  // namespace ifwatch::capture
