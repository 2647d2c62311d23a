// Writes a classic PCAP file to the standard output: capture_feeder [--pause PACKETS] PACKETS SOURCE
//
// Its packets are the frames of the source (as of trace_feeder), repeated to the number asked for. After --pause
// PACKETS, and after the last, it prints a line on its error stream and goes on when it has read one.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "base/byte_order.h"
#include "base/patient_write.h"
#include "capture/link_types.h"
#include "capture/pcap_writer.h"
#include "trace/record_stream.h"
#include "traffic.h"

namespace {

using namespace ifwatch;

constexpr std::int64_t NS_PER_PACKET = 100'000;
constexpr std::size_t PIECE = std::size_t{1} << 20;

bool leave(std::vector<std::uint8_t>& octets) {
    const bool written = write_whole(STDOUT_FILENO, {reinterpret_cast<const char*>(octets.data()), octets.size()});
    octets.clear();
    return written;
}

/// The octets of a record of the block.
std::span<const std::uint8_t> frame_of(const bench::traffic& block, std::size_t index) {
    const auto record = std::span(block.octets).subspan(block.starts[index]);
    return record.subspan(RECORD_HEADER_LENGTH, load_be16(record.data()) - std::size_t{RECORD_HEADER_LENGTH});
}

bool feed(const bench::feeding& what) {
    const unsigned long pause = what.number_of("--pause", 0);  // 0: none
    std::vector<std::uint8_t> octets;
    octets.reserve(2 * PIECE);
    capture::append_pcap_header(octets, capture::LINK_ETHERNET);
    for (unsigned long i = 0; i < what.count; ++i) {
        const auto frame = frame_of(what.block, i % what.block.starts.size());
        capture::append_pcap_packet(octets, {.time_ns = static_cast<std::int64_t>(i + 1) * NS_PER_PACKET,
                                             .original_length = static_cast<std::uint32_t>(frame.size()),
                                             .data = frame});
        const bool halts = pause != 0 && (i + 1 == pause || i + 1 == what.count);
        if ((octets.size() >= PIECE || halts) && !leave(octets)) {
            return false;
        }
        if (halts && (std::fputs("written\n", stderr) < 0 || std::getchar() != '\n')) {
            return false;
        }
    }
    return leave(octets);
}

}  // namespace

int main(int argc, char** argv) {
    bench::feeding what;
    if (!bench::read_arguments({argv, static_cast<std::size_t>(argc)},
                               "capture_feeder [--pause PACKETS] PACKETS SOURCE", what)) {
        return 2;
    }
    if (!feed(what)) {
        std::perror("capture_feeder");
        return 1;
    }
    return 0;
}
