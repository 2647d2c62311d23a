#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "display/display_context.h"
#include "trace/record_stream.h"

namespace ifwatch::fuzz {

// The input of the targets that take a trace:
//
//     octets 0-3   mode flags, little-endian
//     octets 4-5   channel type, big-endian; 0xFFFE is -2, the PABX
//     octet  6     TEI filter; 0xFF: none
//     octet  7     call reference filter; 0xFF: none
//     then for each record, big-endian
//     octets 0-3   record flags
//     octets 4-7   channel info
//     octets 8-9   what the original length is more than the octets captured, or less, modulo 2^16
//     octet  10    so many steps of time later than the record before, or earlier: signed; when odd, records were
//                  lost, too
//     octets 11-12 captured octets: the data that follow
inline constexpr std::size_t TRACE_HEADER = 8;
inline constexpr std::size_t RECORD_HEADER = 13;

/// The octets of a record, in memory of exactly their size, and what follows the record in the input.
struct taken_record {
    std::unique_ptr<std::uint8_t[]> data;
    std::span<const std::uint8_t> rest;
};

/// Makes the first record of an input of at least RECORD_HEADER octets the current one, for as long as its octets and
/// `header` are there. `header` is that of the record before it; a step of time has `step_ms`.
[[nodiscard]] taken_record take_record(std::span<const std::uint8_t> input, int step_ms, record_header& header,
                                       display_context& context);

/// Ends the run as a finding unless `holds`; `what` goes to the error stream.
void require(bool holds, const char* what);

/// The processor time that this thread has used. Time in which another process or thread has the processor does not
/// count, so a busy machine makes no finding.
[[nodiscard]] std::int64_t thread_time_ns();

/// The most processor time that a record may take. The fuzz targets are instrumented and several times slower than
/// the program that is used, and have to keep the same limit.
inline constexpr std::int64_t RECORD_TIME_MAXIMUM_NS = 50'000'000;

/// What holds of the state of the decoders between two records, whatever the records were: every buffer is filled
/// within its size, every mode has a value that it knows, and nothing that was entered is still open.
void check_state(const display_context& context);

/// Shows the current record and checks its limits: at most 512 characters for each octet held, those of frames begun
/// in earlier records included, and 4096 more; processor time; the state behind it; and nothing changed of what the
/// command line chose. Takes the standard output over.
void show_checked(display_context& context);

}  // namespace ifwatch::fuzz
