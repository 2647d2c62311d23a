#pragma once

#include <cstdint>

#include "client/decoder_options.h"
#include "client/secret.h"
#include "trace/addinfo.h"
#include "trace/trace_target.h"

namespace ifwatch {

/// Where the records go besides or instead of the terminal.
enum sink_kind : std::uint8_t {
    SINK_NONE = 0,
    SINK_PIPE = 6,  // PCAP into a named pipe
    SINK_FILE = 7,  // PCAP into a plain file
};

inline constexpr std::int32_t DEFAULT_VERSION = 3;
inline constexpr std::uint16_t DEFAULT_PORT = 7000;

/// The configuration of a run. Texts point into the argument vector.
struct options : decoder_options {
    const char* host = nullptr;  // as typed
    std::uint16_t port = DEFAULT_PORT;
    std::int32_t version = DEFAULT_VERSION;  // of the trace protocol, as asked for
    secret password;                         // --pwd
    trace_target target;
    bool list_mode = false;  // a router and no interface: its interfaces are listed
    addinfo_buffer addinfo;
    atm_parameters atm;

    sink_kind sink = SINK_NONE;
    bool start_analyser = false;        // --ethereal
    bool print = false;                 // --print: decode also while writing PCAP
    const char* output_name = nullptr;  // --ofile
    std::int32_t pcap_linktype = -1;    // --pcap-linktype; negative: that of the interface type
    const char* trace_file = nullptr;   // a recorded session instead of a router; no option sets it
};

/// What a command line asks for.
enum class command : std::uint8_t {
    TRACE,         // also the interface list
    CHANNEL_TEST,  // the channels of a router that cannot list its interfaces
    SHOW_HELP,
    SHOW_USAGE,  // what is wrong has been reported
};

/// Reads a command line into the configuration and verbose_level. Options may stand behind positional arguments, and
/// long ones may be abbreviated, as getopt_long allows. A number is the decimal digits at the start of its text;
/// without any it is 0. Filters that the daemon cannot take are refused here, before anything is connected. The
/// password is wiped from the argument vector.
command parse_options(int argc, char** argv, options& settings);

}  // namespace ifwatch
