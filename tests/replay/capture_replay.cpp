// Reads captures damaged: every case as classic PCAP and as pcapng, each in two forms, cut at every length, and with
// each octet in turn set to a few values. Built with the address and undefined-behaviour sanitizers; beside them, what
// is shown of a cut capture has to be the beginning of what is shown of one that is longer. Usage: capture_replay
// CASE... or, for captures of somebody else's, which are shown as they are: capture_replay CAPTURE...

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/print.h"
#include "capture/own_capture.h"
#include "capture/pcapng_blocks.h"
#include "capture/pcapng_writer.h"
#include "cases/case_file.h"
#include "cases/input_file.h"
#include "convert/capture_export.h"
#include "read/viewer.h"
#include "support/case_options.h"
#include "support/pcap_octets.h"
#include "support/pcapng_octets.h"

namespace {

using namespace ifwatch;

using octet_list = std::vector<std::uint8_t>;

constexpr std::array<std::uint8_t, 2> PLANTED = {0x00, 0xFF};

// NOLINTBEGIN(*-avoid-non-const-global-variables,cert-err58-cpp): the writer below has no other place for it
std::string printed;
std::size_t all_printed = 0;
// NOLINTEND(*-avoid-non-const-global-variables,cert-err58-cpp)

long keep_output(const char* data, std::size_t length) {
    printed.append(data, length);
    all_printed += length;
    return static_cast<long>(length);
}

/// A file in memory that captures are read from.
class memory_file {
public:
    memory_file() : fd_(memfd_create("capture", MFD_CLOEXEC)) {}
    ~memory_file() { close(fd_); }
    memory_file(const memory_file&) = delete;
    memory_file& operator=(const memory_file&) = delete;
    memory_file(memory_file&&) = delete;
    memory_file& operator=(memory_file&&) = delete;

    [[nodiscard]] bool hold(std::span<const std::uint8_t> octets) const {
        return ftruncate(fd_, 0) == 0 &&
               pwrite(fd_, octets.data(), octets.size(), 0) == static_cast<ssize_t>(octets.size()) &&
               lseek(fd_, 0, SEEK_SET) == 0;
    }
    [[nodiscard]] int fd() const { return fd_; }

private:
    int fd_;
};

class capture_replay {
public:
    capture_replay(std::string name, const cases::trace_case& trace) : name_(std::move(name)) {
        options_.decoders.mode_flags = trace.options.empty() ? 0 : test::mode_flags_of(trace.options.front());
        if (!trace.path.empty()) {
            options_.channel_type = trace.channel_type;
        }
    }

    /// The capture as it is.
    std::size_t whole(const octet_list& octets) {
        show(octets);
        return 1;
    }

    /// The capture in all its damaged forms; how many those were, 0 behind a message when one was shown wrongly.
    std::size_t damage(octet_list octets) {
        std::string shorter;
        for (std::size_t length = 0; length <= octets.size(); ++length) {
            std::string shown = show(std::span(octets).first(length));
            if (!shown.starts_with(shorter)) {
                return complain("less is shown than of one that is shorter", length);
            }
            shorter = std::move(shown);
        }
        for (std::uint8_t& octet : octets) {
            const std::uint8_t kept = octet;
            for (const std::uint8_t planted : PLANTED) {
                octet = planted;
                show(octets);
            }
            octet = kept;
        }
        return octets.size() * (1 + PLANTED.size());
    }

private:
    std::string show(std::span<const std::uint8_t> octets) {
        printed.clear();
        if (!file_.hold(octets)) {
            return "";
        }
        read::shown_counts counts;
        read::show_capture({.name = name_, .fd = file_.fd()}, "", options_, counts);
        return printed;
    }

    [[nodiscard]] std::size_t complain(const char* what, std::size_t length) const {
        static_cast<void>(std::fprintf(stderr, "%s, %zu octets: %s\n", name_.c_str(), length, what));
        return 0;
    }

    std::string name_;
    read::read_options options_;
    memory_file file_;
};

/// As ifwatch-extcap would write it, with everything that a packet can have beside its octets.
octet_list pcapng_of(const cases::trace_case& trace) {
    octet_list file;
    capture::block_buffer block;
    const auto add = [&] { file.insert(file.end(), block.begin(), block.end()); };
    capture::build_section_header(block, "test");
    add();
    capture::pcapng_interface described;
    described.link_type = capture::LINK_USER0;
    described.name = "ifwatch-1000";
    described.description = "Interface 1000 of test: case";
    described.comment = capture::interface_type_comment(trace.channel_type);
    capture::build_interface_description(block, described);
    add();
    for (const cases::case_record& record : trace.records) {
        capture::pcapng_packet packet;
        packet.time_ms = record.timestamp_ms;
        packet.data = record.data;
        packet.original_length = record.original_length;
        packet.flags = (record.flags & 1) != 0 ? 2 : 1;
        packet.lost = record.sequence % 3;
        packet.comment = "line error: CRC";
        capture::build_enhanced_packet(block, packet);
        add();
    }
    return file;
}

/// In the other byte order, and with times in nanoseconds.
octet_list big_endian_pcap_of(const cases::trace_case& trace) {
    test::pcap_octets file(true);
    file.header(capture::LINK_USER0, 0xA1B23C4D);
    for (const cases::case_record& record : trace.records) {
        file.packet(record.timestamp_ms / 1000, record.timestamp_ms % 1000 * 1'000'000, record.data,
                    record.original_length);
    }
    return file.octets();
}

/// Big-endian, and with the packets that nobody here writes: simple and obsolete ones in turn.
octet_list other_pcapng_of(const cases::trace_case& trace) {
    test::pcapng_octets file(true);
    file.section().interface(capture::LINK_USER0);
    bool simple = true;
    for (const cases::case_record& record : trace.records) {
        const auto length = static_cast<std::uint32_t>(record.data.size());
        if (simple) {
            file.block(capture::BLOCK_SIMPLE_PACKET, file.empty().word(length).padded(record.data));
        } else {
            test::pcapng_octets body = file.empty().half(0).half(record.sequence % 3);
            body.word(0).word(record.timestamp_ms * 1000).word(length).word(record.original_length).padded(record.data);
            body.word_option(capture::PACKET_FLAGS, capture::PACKET_OUTBOUND).end_options();
            file.block(capture::BLOCK_PACKET, body);
        }
        simple = !simple;
    }
    return file.octets();
}

/// A capture as it is; all decoders are on.
bool replay_capture(const std::string& path, std::size_t& read) {
    std::string text;
    std::string error;
    if (!cases::read_input(path, text, error)) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.c_str()));
        return false;
    }
    cases::trace_case all;
    all.options = {"-h -! -2 -3 -p -i -N -t"};
    capture_replay replay(path, all);
    const octet_list octets(text.begin(), text.end());
    read += replay.whole(octets);
    return true;
}

bool replay(const std::string& path, std::size_t& read) {
    if (!path.ends_with(".case")) {
        return replay_capture(path, read);
    }
    cases::trace_case trace;
    std::string error;
    octet_list pcap;
    std::size_t left_out = 0;
    if (!cases::read_case_file(path, trace, error) ||
        !convert::export_capture(trace, capture::LINK_USER0, pcap, left_out, error)) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.c_str()));
        return false;
    }
    const std::pair<const char*, octet_list> forms[] = {
        {" as PCAP", pcap},
        {" as pcapng", pcapng_of(trace)},
        {" as big-endian PCAP", big_endian_pcap_of(trace)},
        {" as big-endian pcapng", other_pcapng_of(trace)},
    };
    bool held = true;
    for (const auto& [form, octets] : forms) {
        const std::size_t shown = capture_replay(path + form, trace).damage(octets);
        read += shown;
        held = held && shown != 0;
    }
    return held;
}

}  // namespace

int main(int argc, char** argv) {
    set_output_writer(keep_output);
    set_report_writer([](std::string_view) {});
    std::size_t read = 0;
    bool held = argc > 1;
    for (const std::string path : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        held = replay(path, read) && held;
    }
    static_cast<void>(std::fprintf(stderr, "%zu captures read, %zu characters shown\n", read, all_printed));
    return held && all_printed != 0 ? 0 : 1;
}
