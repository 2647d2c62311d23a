#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "capture/capture_reader.h"
#include "capture/packet_record.h"
#include "client/decoder_options.h"
#include "display/display_context.h"

namespace ifwatch::read {

/// What tells the lines of a capture apart. What ifwatch-extcap has written of one interface of a router is one line,
/// also where the capture has several interfaces for it: "ifwatch-3000" and "ifwatch-3000 cells".
struct line_identity {
    std::string name;         // "ifwatch-3000", "eth0", "interface 1"
    std::string router = {};  // "Interface 3000 of HOST", as ifwatch-extcap notes; empty in other captures
    std::size_t number = 0;   // of the interface; 0 in what ifwatch-extcap has written
    int channel_type = 0;     // in that: another one begins another line

    bool operator==(const line_identity&) const = default;
};

/// One traced line, and what its decoders remember.
struct traced_line {
    line_identity identity;
    std::uint64_t serial = 0;  // of the lines of a capture, from 1
    display_context context;
    std::uint32_t sequence = 0;  // of the record that was shown last
    bool begun = false;          // a record was shown
    std::uint64_t used = 0;      // when, in packets
};

/// An interface of a capture, which a packet names by its number.
struct known_interface {
    bool seen = false;
    std::uint32_t link_type = 0;
    std::optional<capture::packet_source> source = {};  // nothing: no decoder takes its frames
    traced_line* line = nullptr;                        // once a packet of it is shown
    std::uint32_t lost = 0;                             // packets in front of the next that is shown
};

/// The interfaces of a capture that packets came from. Of their lines at most MAX_LINES are remembered; the one that
/// was used the longest time ago makes room for another, and begins anew if it comes again.
class line_table {
public:
    static constexpr std::size_t MAX_LINES = 512;

    line_table(const decoder_options& decoders, std::optional<int> channel_type)
        : decoders_(decoders), channel_type_(channel_type) {}

    /// The interface of the packet that was just read.
    known_interface& interface_of(const capture::captured_packet& packet, const capture::capture_reader& reader);

    /// Its line. `interface` has a source.
    traced_line& line_of(known_interface& interface, const capture::captured_packet& packet,
                         const capture::capture_reader& reader);

    /// Whether the section of the packet that was just read has described more than one line so far.
    [[nodiscard]] bool has_several_lines(const capture::captured_packet& packet,
                                         const capture::capture_reader& reader) const;

private:
    [[nodiscard]] line_identity identity_of(const capture::capture_interface& described, std::size_t number) const;
    traced_line& add_line(line_identity identity, int channel_type);
    void make_room();

    decoder_options decoders_;
    std::optional<int> channel_type_;
    std::uint32_t section_ = 0;
    std::vector<known_interface> interfaces_;  // by their number
    std::vector<std::unique_ptr<traced_line>> lines_;
    std::uint64_t serials_ = 0;
};

}  // namespace ifwatch::read
