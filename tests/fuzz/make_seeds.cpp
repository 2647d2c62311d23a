// Writes golden cases and samples as inputs for the fuzz targets to start from: make_seeds DIRECTORY CASE...
// DIRECTORY/TARGET/ gets what TARGET reads; one seed for each options line of a case.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "base/print.h"
#include "cases/case_file.h"
#include "cases/record_source.h"
#include "convert/capture_export.h"
#include "support/case_options.h"
#include "support/written_capture.h"
#include "trace/auth.h"
#include "trace/element.h"
#include "trace/record_stream.h"

namespace {

using namespace ifwatch;
using cases::trace_case;

/// Where the seeds of one case go, and how they are called there.
struct seed_place {
    std::filesystem::path directory;
    std::string name;
};

bool write_seed(const seed_place& place, const char* target, const std::string& seed) {
    const std::filesystem::path folder = place.directory / target;
    std::filesystem::create_directories(folder);
    std::ofstream file(folder / place.name, std::ios::binary);
    file << seed;
    file.close();
    if (!file) {
        std::fprintf(stderr, "make_seeds: cannot write %s\n", (folder / place.name).c_str());
    }
    return static_cast<bool>(file);
}

void append(std::string& seed, std::uint32_t value, int octets) {
    for (int i = octets - 1; i >= 0; --i) {
        seed += static_cast<char>(value >> (8 * i));
    }
}

void append(std::string& seed, std::span<const std::uint8_t> octets) { seed.append(octets.begin(), octets.end()); }

void append_element(std::string& seed, std::uint8_t type, std::span<const std::uint8_t> data) {
    append(seed, element_header(type, static_cast<std::uint32_t>(data.size())), 4);
    append(seed, data);
}

/// A trace as record_fuzz reads it.
std::string trace_seed(const trace_case& trace, std::uint32_t mode_flags) {
    std::string seed;
    append(seed, swap32(mode_flags), 4);
    append(seed, static_cast<std::uint32_t>(trace.channel_type), 2);
    append(seed, 0xFFFF, 2);
    for (const cases::case_record& record : trace.records) {
        append(seed, record.flags, 4);
        append(seed, record.info, 4);
        append(seed, record.original_length - static_cast<std::uint32_t>(record.data.size()), 2);
        append(seed, 0, 1);
        append(seed, static_cast<std::uint32_t>(record.data.size()), 2);
        append(seed, record.data);
    }
    return seed;
}

/// The case with its longest record made as long as a record can be, by repeating it.
trace_case lengthened(const trace_case& trace) {
    trace_case result = trace;
    const auto longest = std::ranges::max_element(trace.records, {},
                                                  [](const cases::case_record& record) { return record.data.size(); });
    result.records.clear();
    if (longest != trace.records.end() && !longest->data.empty()) {
        cases::case_record& record = result.records.emplace_back(*longest);
        while (record.data.size() < RECORD_DATA_MAXIMUM) {
            record.data.insert(record.data.end(), longest->data.begin(), longest->data.end());
        }
        record.data.resize(RECORD_DATA_MAXIMUM);
    }
    return result;
}

/// All that a daemon of this version sends.
std::string daemon_octets(const trace_case& trace, int version) {
    std::string sent;
    const std::uint8_t type[] = {static_cast<std::uint8_t>(trace.channel_type)};
    if (version == 1) {
        append(sent, type);
    } else {
        if (version == 3) {
            const std::uint8_t spoken[] = {3};
            const std::uint8_t challenge[AUTH_LENGTH] = {3, 1, 2, 3, 4, 5, 6, 7, 8};
            append_element(sent, ELEMENT_RVERSION, spoken);
            append_element(sent, ELEMENT_AUTH, challenge);
        }
        append_element(sent, ELEMENT_CHANTYPE, type);
        append_element(sent, ELEMENT_END, {});
    }
    std::vector<std::uint8_t> records;
    for (const cases::case_record& record : trace.records) {
        cases::append_record(records, record, -1);
    }
    append(sent, records);
    return sent;
}

/// A session as session_fuzz reads it.
std::string session_seed(const trace_case& trace, int version, std::uint32_t mode_flags) {
    std::string seed;
    append(seed, static_cast<std::uint32_t>(version), 1);
    append(seed, swap32(mode_flags), 4);
    return seed + daemon_octets(trace, version);
}

/// A command line as options_fuzz reads it: the words, ended by zeros.
std::string command_line_seed(const std::string& options_line) {
    std::istringstream words(options_line + " 127.0.0.1 1000");
    std::string seed;
    for (std::string word; words >> word;) {
        seed += word + '\0';
    }
    return seed;
}

bool write_case_seeds(const seed_place& place, const trace_case& trace) {
    bool written = true;
    for (std::size_t i = 0; i < trace.options.size(); ++i) {
        const seed_place numbered{place.directory, place.name + "-" + std::to_string(i)};
        const std::uint32_t mode_flags = test::mode_flags_of(trace.options[i]);
        const int version = static_cast<int>(i % 3) + 1;
        const seed_place longer{place.directory, numbered.name + "-long"};
        written = written && write_seed(numbered, "record_fuzz", trace_seed(trace, mode_flags)) &&
                  write_seed(longer, "record_fuzz", trace_seed(lengthened(trace), mode_flags)) &&
                  write_seed(numbered, "report_fuzz", trace_seed(trace, mode_flags)) &&
                  write_seed(numbered, "session_fuzz", session_seed(trace, version, mode_flags)) &&
                  write_seed(numbered, "options_fuzz", command_line_seed(trace.options[i]));
    }
    return written;
}

/// A PCAP file behind the octet that pcap_fuzz and pcap_import_fuzz read; empty for a case that has no link type.
std::string capture_seed(const trace_case& trace) {
    std::vector<std::uint8_t> file{0};
    std::size_t left_out = 0;
    std::string error;
    return convert::export_capture(trace, {}, file, left_out, error) ? std::string(file.begin(), file.end())
                                                                     : std::string();
}

/// A pcapng file as ifwatch-extcap writes it, behind the octet that pcap_import_fuzz reads.
std::string pcapng_seed(const trace_case& trace) {
    const capture::link_layer link = capture::find_link_layer(trace.channel_type, {capture::LINK_PPP});
    std::string seed(1, '\0');
    append(seed, test::written_capture(trace, link).file);
    return seed;
}

/// The same for pcapng_fuzz, which puts the type of the first block in front itself.
std::string pcapng_reader_seed(const trace_case& trace) {
    constexpr std::size_t block_type = 4;
    return pcapng_seed(trace).erase(1, block_type);
}

bool write_seeds(const std::filesystem::path& directory, const std::filesystem::path& path) {
    trace_case trace;
    std::string error;
    if (!cases::read_case_file(path.string(), trace, error)) {
        write_errors(error + "\n");
        return false;
    }
    const seed_place place{directory, path.parent_path().filename().string() + "-" + path.stem().string()};
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return write_seed(place, "case_file_fuzz", text.str()) &&
           write_seed(place, "element_fuzz", daemon_octets(trace, 3)) &&
           write_seed(place, "pcap_fuzz", capture_seed(trace)) &&
           write_seed(place, "pcapng_fuzz", pcapng_reader_seed(trace)) &&
           write_seed(place, "pcap_import_fuzz", capture_seed(trace)) &&
           write_seed({directory, place.name + "-ng"}, "pcap_import_fuzz", pcapng_seed(trace)) &&
           write_case_seeds(place, trace);
}

/// What no case has in its options lines.
bool write_other_command_lines(const std::filesystem::path& directory) {
    const char* const command_lines[] = {
        "-B 10.1.1.7:10.1.1.8:6:23:1024 -B !192.0.2.1",
        "-I 10.1.1.7-10.1.1.9::17",
        "--pcap-file --ofile=x.pcap --pcap-linktype=105 --print",
        "--pcap-pipe --ofile=x",
        "-V2 -P7001 -r 100 -n 3",
        "-T 64 -c 7 -D",
        "--src=02:00:01:01:02:03 --dst=ff:ff:ff:ff:ff:ff --llc",
        "--vpi=1 --vci=32 -H router",
        "--pwd=secret --version -vvv",
        "--ethereal",
        "--help",
    };
    bool written = true;
    int number = 0;
    for (const char* const line : command_lines) {
        const seed_place place{directory, "line-" + std::to_string(number++)};
        written = written && write_seed(place, "options_fuzz", command_line_seed(line));
    }
    return written;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: make_seeds DIRECTORY CASE...\n");
        return 2;
    }
    bool written = write_other_command_lines(arguments[1]);
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        written = write_seeds(arguments[1], arguments[i]) && written;
    }
    return written ? 0 : 1;
}
