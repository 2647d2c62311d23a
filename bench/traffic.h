#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ifwatch::bench {

/// A stretch of trace records as they go over the wire.
struct traffic {
    int channel_type = 0;
    std::vector<std::uint8_t> octets{};
    std::vector<std::size_t> starts{};  // where each record begins in `octets`
};

/// Frames that are made, not captured. Each has the asked length (a multiple of 2, at least 64) and the same octets in
/// every run.
enum class frame_kind {
    TCP,       // Ethernet, IPv4, TCP and data
    NESTED,    // SNMP: 32 sequences inside each other, the innermost filled with numbers
    TABLES,    // Q.931: cause elements whose value stands last in its table, a look-up for every four octets
    SERVICES,  // NetWare: servers whose type stands last in the largest table
};

[[nodiscard]] std::vector<std::uint8_t> make_frame(frame_kind kind, std::size_t length);
[[nodiscard]] int channel_type_of(frame_kind kind);

/// Ethernet frames of 60 to 1514 octets with correct checksums: TCP mostly, some UDP, ICMP and ARP.
[[nodiscard]] traffic make_mixed_frames(std::size_t records);

/// What `source` names: "mixed", "tcp=LENGTH", "nested=LENGTH", "tables=LENGTH", "services=LENGTH", or the path of a
/// case file. On a mistake false, with what is wrong in `error`.
bool find_traffic(std::string_view source, traffic& found, std::string& error);

/// What a feeder is told, as [OPTION NUMBER] COUNT SOURCE.
struct feeding {
    traffic block;
    unsigned long count = 0;  // records or packets
    std::string_view option;  // "": none
    unsigned long number = 0;

    [[nodiscard]] unsigned long number_of(std::string_view name, unsigned long otherwise) const {
        return option == name ? number : otherwise;
    }
};

/// On a mistake false, with what is wrong on the error stream. `usage` begins with the program's name.
bool read_arguments(std::span<char*> arguments, std::string_view usage, feeding& what);

/// Gives the records the sequence numbers from `first` on, and time stamps that go on with them.
void number_records(traffic& block, std::uint32_t first);

}  // namespace ifwatch::bench
