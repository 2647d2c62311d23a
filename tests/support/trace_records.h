#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/scripted_daemon.h"

namespace ifwatch::test {

inline constexpr int CHANNEL_TYPE_LAN = 6;
inline constexpr std::size_t TRACE_REQUEST_OCTETS = 20;

/// A trace record as it goes over the wire: sent by the router, at 1 s for each sequence number.
inline std::vector<std::uint8_t> trace_record(std::uint8_t sequence, const std::vector<std::uint8_t>& data) {
    std::vector<std::uint8_t> record;
    const auto put = [&record](std::size_t value, int octets) {
        for (int i = octets - 1; i >= 0; --i) {
            record.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    };
    put(22 + data.size(), 2);
    put(16, 2);
    put(std::size_t{1000} * sequence, 4);
    put(1, 4);
    put(0, 4);
    put(sequence, 4);
    put(data.size(), 2);
    for (const std::uint8_t octet : data) {
        put(octet, 1);
    }
    return record;
}

/// The daemon's side of a version-1 session on a LAN interface: it sends `records` records of 14 octets, 0xA0 plus the
/// sequence number in each, and then ends, or waits for the client to go.
inline scripted_daemon::script serving(std::uint8_t records, bool stays = false) {
    return [records, stays](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send({CHANNEL_TYPE_LAN});
        for (std::uint8_t i = 1; i <= records; ++i) {
            client.send(trace_record(i, std::vector<std::uint8_t>(14, static_cast<std::uint8_t>(0xA0 + i))));
        }
        if (stays) {
            client.receive_all();
        }
    };
}

inline void append_word(std::string& text, std::uint32_t value) {
    text.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// What the PCAP sink holds of `records` records of `serving`, in the byte order of this machine.
inline std::string pcap_of(std::uint8_t records, std::uint32_t link_type = 1) {
    std::string file;
    for (const std::uint32_t word : {0xA1B2C3D4U, 0x00040002U, 0U, 0U, 65535U, link_type}) {
        append_word(file, word);
    }
    for (std::uint8_t i = 1; i <= records; ++i) {
        for (const std::uint32_t word : {std::uint32_t{i}, 0U, 14U, 14U}) {
            append_word(file, word);
        }
        file.append(14, static_cast<char>(0xA0 + i));
    }
    return file;
}

}  // namespace ifwatch::test
