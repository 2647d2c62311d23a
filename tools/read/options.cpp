#include "read/options.h"

#include <getopt.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "sim/sent_text.h"
#include "sim/text_parts.h"

namespace ifwatch::read {

namespace {

using sim::quoted;

// Of ifwatch, but not of this program.
constexpr char FOREIGN_LETTERS[] = "V:zn:r:H:P:I:B:o";

enum own_option : int {
    OPTION_TYPE = 256,  // above every one-letter option
    OPTION_SENT,
    OPTION_COLOR,
    OPTION_REPORT,
    OPTION_HELP,
    FIRST_FOREIGN,
};

constexpr const char* ROUTERS_FILTER =
    "is a filter that the router applies; of a capture, tcpdump -r FILE -w - FILTER, or tshark with -Y, picks packets";
constexpr const char* ROUTERS_CHOICE = "chooses what the router sends; a capture is shown as it is";
constexpr const char* ROUTERS_ACCESS = "is for the session with a router; a capture is read without one";
constexpr const char* WRITES_PCAP = "is for writing PCAP; here captures are read";

/// An option of ifwatch that means nothing to a program that reads captures.
struct foreign_option {
    const char* name;  // a letter, or the name behind --
    bool takes_argument;
    const char* reason;
};

constexpr foreign_option FOREIGN_OPTIONS[] = {
    {"V", true, ROUTERS_ACCESS},
    {"P", true, ROUTERS_ACCESS},
    {"H", true, ROUTERS_ACCESS},
    {"pwd", true, ROUTERS_ACCESS},
    {"I", true, ROUTERS_FILTER},
    {"B", true, ROUTERS_FILTER},
    {"o", false, ROUTERS_FILTER},
    {"src", true, ROUTERS_FILTER},
    {"dst", true, ROUTERS_FILTER},
    {"llc", false, ROUTERS_FILTER},
    {"r", true, ROUTERS_CHOICE},
    {"z", false, ROUTERS_CHOICE},
    {"vpi", true, ROUTERS_CHOICE},
    {"vci", true, ROUTERS_CHOICE},
    {"ethereal", false, WRITES_PCAP},
    {"pcap-pipe", false, WRITES_PCAP},
    {"pcap-file", false, WRITES_PCAP},
    {"pcap-linktype", true, WRITES_PCAP},
    {"ofile", true, WRITES_PCAP},
    {"print", false, "shows what ifwatch writes; here everything is shown"},
    {"n", true, "has no meaning in ifwatch either"},
};

std::vector<option> long_options() {
    std::vector<option> longs = {{"type", required_argument, nullptr, OPTION_TYPE},
                                 {"sent", required_argument, nullptr, OPTION_SENT},
                                 {"color", optional_argument, nullptr, OPTION_COLOR},
                                 {"report", no_argument, nullptr, OPTION_REPORT},
                                 {"help", no_argument, nullptr, OPTION_HELP}};
    for (int i = 0; i < static_cast<int>(std::size(FOREIGN_OPTIONS)); ++i) {
        const foreign_option& foreign = FOREIGN_OPTIONS[i];
        if (std::strlen(foreign.name) > 1) {
            longs.push_back(
                {foreign.name, foreign.takes_argument ? required_argument : no_argument, nullptr, FIRST_FOREIGN + i});
        }
    }
    longs.push_back({});
    return longs;
}

const foreign_option* find_foreign(int key) {
    if (key >= FIRST_FOREIGN) {
        return &FOREIGN_OPTIONS[key - FIRST_FOREIGN];
    }
    const auto* const found = std::ranges::find_if(
        FOREIGN_OPTIONS, [key](const foreign_option& row) { return row.name[1] == '\0' && row.name[0] == key; });
    return found != std::end(FOREIGN_OPTIONS) ? found : nullptr;
}

std::string dashed(const std::string& name) { return (name.size() > 1 ? "--" : "-") + name; }

bool set_type(const std::string& text, read_options& options) {
    const auto code = sim::parse_number(text, -0x8000, 0xFFFF);
    options.channel_type = code ? std::optional(static_cast<int>(*code)) : std::nullopt;
    return code.has_value();
}

bool set_sent(const std::string& text, read_options& options) {
    const auto rule = sim::parse_sent_rule(text);
    options.sent = rule.value_or(options.sent);
    return rule.has_value();
}

bool set_color(const std::string& text, read_options& options) {
    if (text.empty() || text == "always") {
        options.color = color_choice::ALWAYS;
    } else if (text == "never" || text == "auto") {
        options.color = text == "never" ? color_choice::NEVER : color_choice::AUTO;
    } else {
        return false;
    }
    return true;
}

std::string wrong_argument(const char* name, const char* takes, const std::string& argument) {
    return std::string("--") + name + " takes " + takes + ", not " + quoted(sim::on_one_line(argument));
}

/// Takes one option. The problem with it, if there is one.
std::string take_option(int key, read_options& options) {
    const std::string argument = optarg != nullptr ? optarg : "";
    if (key == OPTION_HELP) {
        options.help = true;
    } else if (key == OPTION_REPORT) {
        options.report = true;
    } else if (key == OPTION_TYPE && !set_type(argument, options)) {
        return wrong_argument("type", "the code of an interface type", argument);
    } else if (key == OPTION_SENT && !set_sent(argument, options)) {
        return wrong_argument("sent", "none, all, a MAC address or an IPv4 address", argument);
    } else if (key == OPTION_COLOR && !set_color(argument, options)) {
        return wrong_argument("color", "auto, always or never", argument);
    } else if (const foreign_option* const foreign = find_foreign(key)) {
        return dashed(foreign->name) + " " + foreign->reason;
    } else {
        take_decoder_option(key, optarg, options.decoders);
    }
    return "";
}

/// What is wrong with the option at which getopt_long stopped. Its code is in optopt: 0 for an unknown long one.
std::string describe_mistake(bool argument_missing, const char* word) {
    const bool is_letter = optopt > 0 && optopt < OPTION_TYPE;
    const std::string name = is_letter ? std::string("-") + static_cast<char>(optopt) : word;
    if (const foreign_option* const foreign = find_foreign(optopt)) {
        return dashed(foreign->name) + " " + foreign->reason;
    }
    if (argument_missing) {
        return name + " takes an argument, and none is given";
    }
    if (optopt >= OPTION_TYPE) {
        return name.substr(0, name.find('=')) + " takes no argument";
    }
    return "unknown option " + quoted(sim::on_one_line(name));
}

}  // namespace

bool parse_options(int argc, char** argv, read_options& options, std::string& error) {
    const std::vector<option> longs = long_options();
    const std::string letters = std::string(":") + DECODER_LETTERS + FOREIGN_LETTERS;
    opterr = 0;
    optind = 0;  // so that getopt_long starts afresh with every command line
    for (int key = 0; error.empty() && (key = getopt_long(argc, argv, letters.c_str(), longs.data(), nullptr)) != -1;) {
        if (key == '?' && optopt == '?') {
            options.help = true;
        } else if (key == '?' || key == ':') {
            error = describe_mistake(key == ':', argv[optind - 1]);
        } else {
            error = take_option(key, options);
        }
        if (options.help) {
            return true;
        }
    }
    complete_mode_flags(options.decoders.mode_flags);
    options.files.assign(argv + optind, argv + argc);
    return error.empty();
}

}  // namespace ifwatch::read
