#include "extcap/options.h"

#include <getopt.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "sim/text_parts.h"

namespace ifwatch::extcap {

namespace {

using sim::in_quotes;
using sim::parse_number;

constexpr std::int64_t LONGEST_FRAME = 8192;

bool set_host(const std::string& text, plugin_options& options) {
    options.host = text;
    return text.find_first_of(" \t\n") == std::string::npos;
}
bool set_port(const std::string& text, plugin_options& options) {
    const auto value = parse_number(text, 1, 0xFFFF);
    options.port = static_cast<std::uint16_t>(value.value_or(DEFAULT_PORT));
    return value.has_value();
}
bool set_choice(const std::string& text, interface_choice& choice) {
    auto parsed = parse_interface_choice(text);
    choice = parsed ? std::move(*parsed) : interface_choice{};
    return parsed.has_value();
}
bool set_interfaces(const std::string& text, plugin_options& options) { return set_choice(text, options.interfaces); }
bool set_typed_interfaces(const std::string& text, plugin_options& options) {
    return set_choice(text, options.typed_interfaces);
}
bool set_bchannels(const std::string& text, plugin_options& options) {
    auto parsed = parse_bchannel_choice(text);
    options.bchannels = parsed ? std::move(*parsed) : bchannel_choice{};
    return parsed.has_value();
}
bool set_credentials(const std::string& text, plugin_options& options) {
    options.credentials = text;
    return true;
}
bool set_capture_length(const std::string& text, plugin_options& options) {
    const auto value = parse_number(text, 0, LONGEST_FRAME);
    options.capture_length = static_cast<std::int32_t>(value.value_or(0));
    return value.has_value();
}
bool set_vpi(const std::string& text, plugin_options& options) {
    const auto value = parse_number(text, 0, 0xFF);
    options.atm.vpi = static_cast<std::int32_t>(value.value_or(-1));
    return value.has_value();
}
bool set_vci(const std::string& text, plugin_options& options) {
    const auto value = parse_number(text, 0, 0xFFFF);
    options.atm.vci = static_cast<std::int32_t>(value.value_or(-1));
    return value.has_value();
}
bool set_router_time(const std::string& /*text*/, plugin_options& options) {
    options.router_time = true;
    return true;
}
bool set_reconnect(const std::string& /*text*/, plugin_options& options) {
    options.reconnect = true;
    return true;
}
bool set_interface_id(const std::string& text, plugin_options& options) {
    options.interface_id = text;
    return text == INTERFACE_ID;
}
bool set_fifo(const std::string& text, plugin_options& options) {
    options.fifo = text;
    return true;
}
bool set_filter(const std::string& text, plugin_options& options) {
    options.filter = text;
    return true;
}
bool set_reload(const std::string& text, plugin_options& options) {
    const std::size_t name = text.find_first_not_of('-');
    options.reload_option = name != std::string::npos ? text.substr(name) : "";
    return true;
}

struct known_option {
    const char* name;
    int argument = no_argument;
    call asks_for = call::NONE;
    bool (*apply)(const std::string& text, plugin_options& options) = nullptr;
    const char* takes = nullptr;  // for the message about a wrong argument
};

constexpr const char* CHOICES = "interface indexes, ranges of them, line:INDEX, slot:N and all, with commas between";

constexpr known_option OPTIONS[] = {
    {"extcap-interfaces", no_argument, call::LIST_INTERFACES},
    {"extcap-version", optional_argument, call::VERSION},
    {"extcap-dlts", no_argument, call::LIST_LINK_TYPES},
    {"extcap-config", no_argument, call::LIST_OPTIONS},
    {"extcap-reload-option", required_argument, call::RELOAD_OPTION, set_reload},
    {"extcap-capture-filter", required_argument, call::CHECK_FILTER, set_filter},
    {"extcap-cleanup-postkill", no_argument, call::CLEAN_UP},
    {"extcap-interface", required_argument, call::NONE, set_interface_id, "the interface 'ifwatch'"},
    {"extcap-control-in", required_argument},  // pipes of the analyser's toolbar, which is not used
    {"extcap-control-out", required_argument},
    {"capture", no_argument, call::CAPTURE},
    {"fifo", required_argument, call::NONE, set_fifo},
    {"host", required_argument, call::NONE, set_host, "a router's name or IPv4 address"},
    {"port", required_argument, call::NONE, set_port, "a port from 1 to 65535"},
    {"interface", required_argument, call::NONE, set_interfaces, CHOICES},
    {"index", required_argument, call::NONE, set_typed_interfaces, CHOICES},
    {"bchannel", required_argument, call::NONE, set_bchannels,
     "ppp, lapb, frame-relay, cisco-hdlc, ip or raw, and INDEX=KIND for one interface"},
    {"credentials", required_argument, call::NONE, set_credentials},
    {"capture-length", required_argument, call::NONE, set_capture_length, "a number of octets up to 8192"},
    {"vpi", required_argument, call::NONE, set_vpi, "a number from 0 to 255"},
    {"vci", required_argument, call::NONE, set_vci, "a number from 0 to 65535"},
    {"router-time", no_argument, call::NONE, set_router_time},
    {"reconnect", no_argument, call::NONE, set_reconnect},
    {"help", no_argument, call::HELP},
};
constexpr int OPTION_COUNT = static_cast<int>(std::size(OPTIONS));
constexpr int FIRST_CODE = 1000;  // of the options, beyond any character

/// What the program does when more than one call is given: the filter, for one, also comes with a capture.
constexpr call PRECEDENCE[] = {call::HELP,         call::CAPTURE,      call::CLEAN_UP,        call::RELOAD_OPTION,
                               call::LIST_OPTIONS, call::CHECK_FILTER, call::LIST_LINK_TYPES, call::LIST_INTERFACES,
                               call::VERSION,      call::NONE};

call stronger(call one, call other) {
    return std::ranges::find(PRECEDENCE, one) < std::ranges::find(PRECEDENCE, other) ? one : other;
}

/// Takes one option. The problem with it, if there is one.
std::string take_option(const known_option& known, const char* argument, plugin_options& options) {
    options.what = stronger(known.asks_for, options.what);
    const std::string text = argument != nullptr ? argument : "";
    const bool left_empty = known.argument == required_argument && text.empty() && known.asks_for == call::NONE;
    if (known.apply == nullptr || left_empty || known.apply(text, options)) {
        return "";
    }
    return "--" + std::string(known.name) + " takes " + known.takes + ", not " + in_quotes(text);
}

/// What is wrong with the option at which getopt_long stopped. Its code is in optopt: 0 for an unknown long one.
std::string describe_mistake(bool argument_missing, const char* word) {
    if (optopt >= FIRST_CODE) {
        const std::string name = "--" + std::string(OPTIONS[optopt - FIRST_CODE].name);
        return argument_missing ? "no argument behind " + in_quotes(name) : name + " takes no argument";
    }
    return "unknown option " + in_quotes(optopt != 0 ? std::string("-") + static_cast<char>(optopt) : word);
}

bool needs_interface(call what) {
    return what == call::LIST_LINK_TYPES || what == call::LIST_OPTIONS || what == call::RELOAD_OPTION ||
           what == call::CHECK_FILTER || what == call::CAPTURE;
}

/// What is missing for the call, or contradicts itself.
std::string find_gap(const plugin_options& options) {
    if (options.what == call::NONE) {
        return "nothing to do";
    }
    if (needs_interface(options.what) && options.interface_id.empty()) {
        return "--extcap-interface is missing; the interface is '" + std::string(INTERFACE_ID) + "'";
    }
    if (options.what == call::CAPTURE && options.fifo.empty()) {
        return "--fifo is missing: where are the packets to go?";
    }
    const interface_choice& chosen = options.interfaces;
    const interface_choice& typed = options.typed_interfaces;
    if (options.what == call::CAPTURE && !chosen.empty() && !typed.empty() && chosen != typed) {
        return "the interface and the index differ: " + chosen.text() + " and " + typed.text() + "; give one of them";
    }
    if (options.what == call::CAPTURE && chosen.empty() && typed.empty()) {
        return "--interface is missing: which interface of the router?";
    }
    return "";
}

}  // namespace

bool parse_options(int argc, char** argv, plugin_options& options, std::string& error) {
    error.clear();
    const auto note = [&error](std::string problem) { error = error.empty() ? std::move(problem) : error; };
    option longs[OPTION_COUNT + 1] = {};
    for (int i = 0; i < OPTION_COUNT; ++i) {
        longs[i] = {OPTIONS[i].name, OPTIONS[i].argument, nullptr, FIRST_CODE + i};
    }
    opterr = 0;
    optind = 0;
    for (int code = 0; (code = getopt_long(argc, argv, ":h", longs, nullptr)) != -1;) {
        if (code >= FIRST_CODE) {
            note(take_option(OPTIONS[code - FIRST_CODE], optarg, options));
        } else if (code == 'h') {
            options.what = call::HELP;
        } else {
            note(describe_mistake(code == ':', argv[optind - 1]));
        }
    }
    if (optind < argc) {
        note("not an option: " + in_quotes(argv[optind]));
    }
    const char* const usual_host = std::getenv("TRACE_HOST");
    options.host = options.host.empty() && usual_host != nullptr ? usual_host : options.host;
    note(find_gap(options));
    if (options.interfaces.empty()) {
        options.interfaces = options.typed_interfaces;
    }
    return error.empty();
}

}  // namespace ifwatch::extcap
