// Any file is a capture or has a line that says why not. What was imported is a right case file, keeps the limits of a
// record, and stays as it is when it goes into a capture and back. The input is an octet that chooses
// the options, and the file:
//
//     bits 0-1   what was sent: nothing, everything, what comes from a MAC or an IPv4 address
//     bits 2-5   channel type; 0: that of the link type

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "capture_check.h"
#include "cases/case_text.h"
#include "convert/capture_export.h"
#include "convert/capture_import.h"
#include "display_check.h"
#include "trace/record_stream.h"

namespace {

using namespace ifwatch::capture;
using namespace ifwatch::convert;
using ifwatch::cases::case_record;
using ifwatch::cases::trace_case;
using ifwatch::fuzz::require;

constexpr std::array<int, 16> CHANNEL_TYPES = {0, -2, 0, 1, 2, 3, 4, 6, 7, 9, 16, 32, 118, 131, 135, 200};

import_settings settings_of(std::uint8_t choice) {
    const std::array<sent_rule, 4> rules = {sent_nothing{}, sent_everything{}, mac_address{2, 0, 1, 1, 2, 3},
                                            std::uint32_t{0xC0A8000A}};
    import_settings settings;
    settings.sent = rules[choice & 3U];
    const std::size_t channel = choice >> 2U & 0xFU;
    if (channel != 0) {
        settings.channel_type = CHANNEL_TYPES[channel];
    }
    return settings;
}

/// The case that a file becomes. False where it cannot.
bool import_file(std::span<const std::uint8_t> file, const import_settings& settings, trace_case& imported) {
    byte_stream stream(ifwatch::fuzz::file_of(file));
    std::string text;
    std::string error;
    const import_outcome outcome = import_capture(stream, settings, "fuzzed", [&text](std::string_view part) {
        text += part;
        return true;
    });
    if (!outcome.done) {
        require(!outcome.error.empty() && outcome.error.find('\n') == std::string::npos,
                "a mistake is named in one line");
        return false;
    }
    require(parse_case(text, imported, error), "the case file is right");
    require(imported.records.size() + outcome.left_out == outcome.packets, "every packet is in it or was left out");
    return true;
}

/// A record that a capture of the plug-in notes may name any length on the line, as a router may.
void check_records(const trace_case& imported) {
    for (const case_record& record : imported.records) {
        require(record.data.size() <= ifwatch::RECORD_DATA_MAXIMUM, "a record holds at most 8192 octets");
    }
}

/// Only of classic PCAP: what pcapng notes beside its packets, it cannot hold.
void check_round_trip(const trace_case& imported, const import_settings& settings, std::uint32_t link_type) {
    std::vector<std::uint8_t> file;
    std::size_t left_out = 0;
    std::string error;
    trace_case again;
    if (export_capture(imported, link_type, file, left_out, error)) {
        require(left_out == 0, "every packet is a frame");
        require(import_file(file, settings, again), "what was exported can be imported");
        require(again.records == imported.records, "a capture comes back as it went");
    }
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    constexpr std::size_t link_type_at = 20;
    if (size == 0) {
        return 0;
    }
    const import_settings settings = settings_of(data[0]);
    const std::span<const std::uint8_t> file{data + 1, size - 1};
    trace_case imported;
    if (!import_file(file, settings, imported)) {
        return 0;
    }
    check_records(imported);
    if (file[0] == 0x0A) {
        return 0;
    }
    // The link type is in the low 16 bits of its word, whose order the first octet of the magic tells.
    const bool big_endian = file[0] == 0xA1;
    const std::uint32_t low = file[link_type_at + (big_endian ? 3 : 0)];
    const std::uint32_t high = file[link_type_at + (big_endian ? 2 : 1)];
    check_round_trip(imported, settings, high << 8 | low);
    return 0;
}
