#pragma once

#include <cstdint>
#include <string>

#include "extcap/bchannel_kinds.h"
#include "extcap/interface_choice.h"
#include "trace/addinfo.h"

namespace ifwatch::extcap {

/// The one interface that the analyser lists.
inline constexpr const char* INTERFACE_ID = "ifwatch";
inline constexpr const char* INTERFACE_TITLE = "Router interface";

inline constexpr std::uint16_t DEFAULT_PORT = 7000;

/// What the analyser, or a user, calls the program for.
enum class call : std::uint8_t {
    NONE,
    HELP,
    VERSION,
    LIST_INTERFACES,
    LIST_LINK_TYPES,
    LIST_OPTIONS,
    RELOAD_OPTION,  // the values of one option, from the router
    CHECK_FILTER,
    CAPTURE,
    CLEAN_UP,  // behind a capture that had to be killed: there is nothing to do
};

struct plugin_options {
    call what = call::NONE;
    std::string interface_id;
    std::string fifo;
    std::string filter;
    std::string reload_option;  // without its dashes

    std::string host;  // TRACE_HOST where none is given; empty without it
    std::uint16_t port = DEFAULT_PORT;
    interface_choice interfaces;        // --interface, or else --index
    interface_choice typed_interfaces;  // --index
    bchannel_choice bchannels;
    std::string credentials;          // name of a file; empty: none
    std::int32_t capture_length = 0;  // 0: whole frames
    atm_parameters atm;
    bool router_time = false;  // leave the router's time stamps
    bool reconnect = false;    // try again when a session ends or the router cannot be reached
};

/// Parses the command line. An option with an empty argument counts as not given, for that is how the analyser passes
/// a field left empty. On a mistake false, with a one-line `error`; what could be understood, the FIFO above all, is in
/// `options` all the same.
bool parse_options(int argc, char** argv, plugin_options& options, std::string& error);

}  // namespace ifwatch::extcap
