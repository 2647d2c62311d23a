#include "extcap/options.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "command_line/command_line.h"

namespace ifwatch::extcap {

namespace {

constexpr std::int64_t LONGEST_FRAME = 8192;
constexpr const char* CHOICES = "interface indexes, ranges of them, line:INDEX, slot:N and all, with commas between";

/// What the program does when more than one call is given: the filter, for one, also comes with a capture.
constexpr call PRECEDENCE[] = {call::HELP,         call::CAPTURE,      call::CLEAN_UP,        call::RELOAD_OPTION,
                               call::LIST_OPTIONS, call::CHECK_FILTER, call::LIST_LINK_TYPES, call::LIST_INTERFACES,
                               call::VERSION,      call::NONE};

call stronger(call one, call other) {
    return std::ranges::find(PRECEDENCE, one) < std::ranges::find(PRECEDENCE, other) ? one : other;
}

bool take_any(const std::string& /*text*/) { return true; }

void add_calls(command_line& line, plugin_options& options) {
    const auto asks_for = [&options](call what) {
        return [&options, what] { options.what = stronger(what, options.what); };
    };
    const auto asks_with = [asks_for](call what, argument_reader read) {
        return [ask = asks_for(what), read = std::move(read)](const std::string& text) {
            ask();
            return read(text);
        };
    };
    line.flag("-h,--help", asks_for(call::HELP));
    line.flag("--capture", asks_for(call::CAPTURE));
    line.flag("--extcap-interfaces", asks_for(call::LIST_INTERFACES));
    line.flag("--extcap-dlts", asks_for(call::LIST_LINK_TYPES));
    line.flag("--extcap-config", asks_for(call::LIST_OPTIONS));
    line.flag("--extcap-cleanup-postkill", asks_for(call::CLEAN_UP));
    line.option_or_flag("--extcap-version", "a version", asks_with(call::VERSION, take_any));
    line.option("--extcap-capture-filter", "a filter", asks_with(call::CHECK_FILTER, any_text(options.filter)));
    line.option("--extcap-reload-option", "the name of an option",
                asks_with(call::RELOAD_OPTION, any_text(options.reload_option)));
    line.option("--extcap-control-in", "a file name", take_any);  // of the analyser's toolbar, which is not used
    line.option("--extcap-control-out", "a file name", take_any);
}

void add_settings(command_line& line, plugin_options& options) {
    const auto add = [&line](const char* name, const char* takes, argument_reader read) {
        line.option(name, takes,
                    [read = std::move(read)](const std::string& text) { return text.empty() || read(text); });
    };
    add("--extcap-interface", "the interface 'ifwatch'", one_of(options.interface_id, {{INTERFACE_ID, INTERFACE_ID}}));
    add("--fifo", "a file name", any_text(options.fifo));
    add("--host", "a router's name or IPv4 address", [&options](const std::string& text) {
        options.host = text;
        return text.find_first_of(" \t\n") == std::string::npos;
    });
    add("--port", "a port from 1 to 65535", number(options.port, 1, 0xFFFF));
    add("--interface", CHOICES, parsed(options.interfaces, parse_interface_choice));
    add("--index", CHOICES, parsed(options.typed_interfaces, parse_interface_choice));
    add("--bchannel", "ppp, lapb, frame-relay, cisco-hdlc, ip or raw, and INDEX=KIND for one interface",
        parsed(options.bchannels, parse_bchannel_choice));
    add("--credentials", "a file name", any_text(options.credentials));
    add("--capture-length", "a number of octets up to 8192", number(options.capture_length, 0, LONGEST_FRAME));
    add("--vpi", "a number from 0 to 255", number(options.atm.vpi, 0, 0xFF));
    add("--vci", "a number from 0 to 65535", number(options.atm.vci, 0, 0xFFFF));
    line.flag("--router-time", options.router_time);
    line.flag("--reconnect", options.reconnect);
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
    command_line line;
    add_calls(line, options);
    add_settings(line, options);
    std::vector<std::string> operands;
    line.parse(argc, argv, operands, error);
    const auto note = [&error](const std::string& problem) { error = error.empty() ? problem : error; };
    if (!operands.empty()) {
        note("not an option: " + in_quotes(operands.front()));
    }
    options.reload_option.erase(0, options.reload_option.find_first_not_of('-'));
    const char* const usual_host = std::getenv("TRACE_HOST");
    options.host = options.host.empty() && usual_host != nullptr ? usual_host : options.host;
    note(find_gap(options));
    if (options.interfaces.empty()) {
        options.interfaces = options.typed_interfaces;
    }
    return error.empty();
}

}  // namespace ifwatch::extcap
