#include "client/options.h"

#include <getopt.h>

#include <algorithm>
#include <iterator>
#include <span>

#include "base/print.h"
#include "base/text_sink.h"

namespace ifwatch {

namespace {

constexpr char OTHER_LETTERS[] = "?V:zn:r:H:P:I:B:o";

enum long_option : int {
    OPTION_SRC = 256,  // above every one-letter option
    OPTION_DST,
    OPTION_LLC,
    OPTION_VPI,
    OPTION_VCI,
    OPTION_ETHEREAL,
    OPTION_PCAP_PIPE,
    OPTION_PCAP_FILE,
    OPTION_PCAP_LINKTYPE,
    OPTION_OFILE,
    OPTION_PWD,
    OPTION_PRINT,
    OPTION_HELP,
};

constexpr ::option LONG_OPTIONS[] = {
    {"src", required_argument, nullptr, OPTION_SRC},
    {"dst", required_argument, nullptr, OPTION_DST},
    {"llc", no_argument, nullptr, OPTION_LLC},
    {"vpi", required_argument, nullptr, OPTION_VPI},
    {"vci", required_argument, nullptr, OPTION_VCI},
    {"ethereal", no_argument, nullptr, OPTION_ETHEREAL},
    {"pcap-pipe", no_argument, nullptr, OPTION_PCAP_PIPE},
    {"pcap-file", no_argument, nullptr, OPTION_PCAP_FILE},
    {"pcap-linktype", required_argument, nullptr, OPTION_PCAP_LINKTYPE},
    {"ofile", required_argument, nullptr, OPTION_OFILE},
    {"pwd", required_argument, nullptr, OPTION_PWD},
    {"print", no_argument, nullptr, OPTION_PRINT},
    {"help", no_argument, nullptr, OPTION_HELP},
    {nullptr, 0, nullptr, 0},
};

/// What one option does: a filter it adds, or a setting it changes.
struct option_rule {
    int key = 0;
    char filter_kind = '\0';
    void (*apply)(options& settings, const char* argument) = nullptr;
};

constexpr option_rule filter(int key, char kind) { return {.key = key, .filter_kind = kind}; }
constexpr option_rule setting(int key, void (*apply)(options&, const char*)) { return {.key = key, .apply = apply}; }

constexpr option_rule OPTION_RULES[] = {
    filter('I', 'I'),
    filter('B', 'B'),
    filter('o', 'o'),
    filter(OPTION_SRC, 's'),
    filter(OPTION_DST, 'd'),
    filter(OPTION_LLC, 'l'),
    setting('V', [](options& settings, const char* argument) { settings.version = option_number(argument); }),
    setting('P', [](options& settings,
                    const char* argument) { settings.port = static_cast<std::uint16_t>(option_number(argument)); }),
    setting('r',
            [](options& settings, const char* argument) { settings.target.capture_length = option_number(argument); }),
    setting('z', [](options& settings, const char*) { settings.atm.flags |= 1; }),
    setting('H', [](options& settings, const char* argument) { settings.host = argument; }),
    setting('n', [](options&, const char*) {}),  // accepted, without effect
    setting(OPTION_VPI, [](options& settings, const char* argument) { settings.atm.vpi = option_number(argument); }),
    setting(OPTION_VCI, [](options& settings, const char* argument) { settings.atm.vci = option_number(argument); }),
    setting(OPTION_ETHEREAL,
            [](options& settings, const char*) {
                settings.sink = SINK_PIPE;
                settings.start_analyser = true;
            }),
    setting(OPTION_PCAP_PIPE, [](options& settings, const char*) { settings.sink = SINK_PIPE; }),
    setting(OPTION_PCAP_FILE, [](options& settings, const char*) { settings.sink = SINK_FILE; }),
    setting(OPTION_PCAP_LINKTYPE,
            [](options& settings, const char* argument) { settings.pcap_linktype = option_number(argument); }),
    setting(OPTION_OFILE, [](options& settings, const char* argument) { settings.output_name = argument; }),
    setting(OPTION_PWD, [](options& settings, const char*) { settings.password.take(optarg); }),
    setting(OPTION_PRINT, [](options& settings, const char*) { settings.print = true; }),
};

void apply_rule(const option_rule& rule, options& settings, const char* argument) {
    if (rule.filter_kind != '\0') {
        addinfo_buffer& addinfo = settings.addinfo;
        addinfo.used = add_filter(addinfo.data, argument, rule.filter_kind, addinfo.used);
    }
    if (rule.apply != nullptr) {
        rule.apply(settings, argument);
    }
}

command take_positional(std::span<char*> arguments, options& settings) {
    trace_target& target = settings.target;
    switch (arguments.size()) {
        case 1:
            settings.list_mode = settings.version > 2;
            break;
        case 2:
            split_interface_index(target, option_number(arguments[1]));
            break;
        case 4:
            target.channel = option_number(arguments[1]);
            target.unit = option_number(arguments[2]);
            target.slot = option_number(arguments[3]);
            break;
        default:
            return command::SHOW_USAGE;
    }
    settings.host = arguments[0];
    return arguments.size() == 1 && !settings.list_mode ? command::CHANNEL_TEST : command::TRACE;
}

/// False, with a message, when the daemon could not take all filters.
bool complete_addinfo(options& settings) {
    addinfo_buffer& addinfo = settings.addinfo;
    addinfo.used = build_addinfo(settings.version, addinfo.data, settings.atm, settings.list_mode, addinfo.used);
    if (addinfo.used > ADDINFO_LENGTH) {
        report<"ERROR filters too long (%d > %d octets)\n">(addinfo.used, ADDINFO_LENGTH);
        return false;
    }
    return true;
}

}  // namespace

command parse_options(int argc, char** argv, options& settings) {
    text_buffer<sizeof DECODER_LETTERS + sizeof OTHER_LETTERS> letters;
    put(letters, DECODER_LETTERS);
    put(letters, OTHER_LETTERS);
    optind = 0;  // so that getopt_long starts afresh with every command line
    for (int key = 0; (key = getopt_long(argc, argv, letters.c_str(), LONG_OPTIONS, nullptr)) != -1;) {
        if (key == OPTION_HELP) {
            return command::SHOW_HELP;
        }
        if (take_decoder_option(key, optarg, settings)) {
            continue;
        }
        const auto* const rule = std::ranges::find(OPTION_RULES, key, &option_rule::key);
        if (rule == std::end(OPTION_RULES)) {
            return command::SHOW_USAGE;
        }
        apply_rule(*rule, settings, optarg);
    }
    complete_mode_flags(settings.mode_flags);
    const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
    const command asked = take_positional(arguments.subspan(static_cast<std::size_t>(optind)), settings);
    return asked == command::SHOW_USAGE || complete_addinfo(settings) ? asked : command::SHOW_USAGE;
}

}  // namespace ifwatch
