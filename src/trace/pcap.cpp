#include "trace/pcap.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/print.h"
#include "display/display_context.h"
#include "trace/ifc_types.h"

namespace ifwatch {

namespace {

constexpr int TYPE_TUNNEL = 131;
constexpr int TUNNEL_HEADER = 2;

// Both headers have no padding: they are written as they lie in memory.
struct pcap_file_header {
    std::uint32_t magic = 0xA1B2C3D4;
    std::uint16_t version_major = 2;
    std::uint16_t version_minor = 4;
    std::int32_t time_zone = 0;
    std::uint32_t accuracy = 0;
    std::uint32_t snapshot_length = 65535;
    std::uint32_t link_type = 0;
};
static_assert(sizeof(pcap_file_header) == PCAP_HEADER_LENGTH);

struct pcap_record_header {
    std::uint32_t seconds;
    std::uint32_t microseconds;
    std::uint32_t captured_length;
    std::uint32_t original_length;
};
static_assert(sizeof(pcap_record_header) == 16);

/// Writes all of `length` octets, going on behind a write that took fewer. Returns the length; when going on fails,
/// what the first write returned, with errno of the last one.
long write_counted(int fd, const void* data, long length) {
    const char* const octets_begin = static_cast<const char*>(data);
    long first = 0;
    long done = 0;
    while (done < length) {
        const long written = write(fd, octets_begin + done, static_cast<std::size_t>(length - done));
        if (written > 0) {
            first = done == 0 ? written : first;
            done += written;
        } else if (written == 0 || errno != EINTR) {
            return done == 0 ? written : first;
        }
    }
    return done;
}

/// Writes `length` octets, or tells that it could not and closes the sink.
bool write_or_close(int fd, const void* data, long length, const char* what, const char* prefix) {
    const long written = write_counted(fd, data, length);
    if (written == length) {
        return true;
    }
    const char* const reason = std::strerror(errno);
    report<"ERROR write pcap %s ret : %d\n">(what, written);
    report<"%s: %s\n">(prefix, reason);
    close(fd);
    return false;
}

}  // namespace

int write_pcap_header(int fd, const display_context& context, std::int32_t linktype_override) {
    pcap_file_header header;
    header.link_type = static_cast<std::uint32_t>(
        linktype_override >= 0 ? linktype_override : ifc_type_entry(context.channel_type).link_type);
    return write_or_close(fd, &header, sizeof header, "header", "write pcap file header") ? PCAP_HEADER_LENGTH : -1;
}

int write_pcap_record(int fd, display_context& context) {
    int skipped = 0;
    if (context.channel_type == TYPE_TUNNEL && context.payload.length > 1 && context.original_length > 1) {
        skipped = TUNNEL_HEADER;
        context.payload.length -= TUNNEL_HEADER;
        context.original_length -= TUNNEL_HEADER;
    }
    const int captured = context.payload.length;
    if (captured == 0) {
        return 0;
    }
    const std::uint32_t time = context.header->timestamp_ms;
    const pcap_record_header header{.seconds = time / 1000,
                                    .microseconds = time % 1000 * 1000,
                                    .captured_length = static_cast<std::uint32_t>(captured),
                                    .original_length = context.original_length};
    const auto data = context.payload.run(skipped, captured);
    const bool done = write_or_close(fd, &header, sizeof header, "datahdr", "write pcap data header") &&
                      write_or_close(fd, data.data(), captured, "data", "write pcap data pkt");
    return done ? 0 : -1;
}

}  // namespace ifwatch
