#include "read/options.h"

#include <getopt.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "capture/sent_text.h"
#include "command_line/command_line.h"

namespace ifwatch::read {

namespace {

constexpr const char* ROUTERS_FILTER =
    "is a filter that the router applies; of a capture, tcpdump -r FILE -w - FILTER, or tshark with -Y, picks packets";
constexpr const char* ROUTERS_CHOICE = "chooses what the router sends; a capture is shown as it is";
constexpr const char* ROUTERS_ACCESS = "is for the session with a router; a capture is read without one";
constexpr const char* WRITES_PCAP = "is for writing PCAP; here captures are read";

/// An option of ifwatch that means nothing to a program that reads captures.
struct foreign_option {
    std::string_view name;
    const char* reason;
};

constexpr foreign_option FOREIGN_OPTIONS[] = {
    {"-V", ROUTERS_ACCESS},
    {"-P", ROUTERS_ACCESS},
    {"-H", ROUTERS_ACCESS},
    {"--pwd", ROUTERS_ACCESS},
    {"-I", ROUTERS_FILTER},
    {"-B", ROUTERS_FILTER},
    {"-o", ROUTERS_FILTER},
    {"--src", ROUTERS_FILTER},
    {"--dst", ROUTERS_FILTER},
    {"--llc", ROUTERS_FILTER},
    {"-r", ROUTERS_CHOICE},
    {"-z", ROUTERS_CHOICE},
    {"--vpi", ROUTERS_CHOICE},
    {"--vci", ROUTERS_CHOICE},
    {"--ethereal", WRITES_PCAP},
    {"--pcap-pipe", WRITES_PCAP},
    {"--pcap-file", WRITES_PCAP},
    {"--pcap-linktype", WRITES_PCAP},
    {"--ofile", WRITES_PCAP},
    {"--print", "shows what ifwatch writes; here everything is shown"},
    {"-n", "has no meaning in ifwatch either"},
};

/// Why the option at which getopt_long stopped is none of this program. Its letter is in optopt: 0 for a long one.
std::string describe_unknown(const std::string& word) {
    const std::string name =
        optopt != 0 ? std::string("-") + static_cast<char>(optopt) : word.substr(0, word.find('='));
    for (const foreign_option& foreign : FOREIGN_OPTIONS) {
        if (name == foreign.name) {
            return name + " " + foreign.reason;
        }
    }
    return "unknown option " + on_one_line(in_quotes(name));
}

/// Takes the decoder options out of the words, as ifwatch does, and leaves the files. The problem, if there is one.
std::string take_decoder_options(std::vector<std::string> words, read_options& options) {
    std::string name = "ifwatch-read";
    std::vector<char*> arguments = {name.data()};
    std::ranges::transform(words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    const std::string letters = std::string(":") + DECODER_LETTERS;
    constexpr option NO_LONG_ONES[] = {{}};
    opterr = 0;
    optind = 0;  // so that getopt_long starts afresh with every command line
    for (int key = 0; (key = getopt_long(count, arguments.data(), letters.c_str(), NO_LONG_ONES, nullptr)) != -1;) {
        if (key == '?' && optopt == '?') {
            options.help = true;
            return "";
        }
        if (key == '?') {
            return describe_unknown(arguments[static_cast<std::size_t>(optind) - 1]);
        }
        if (key == ':') {
            return std::string("-") + static_cast<char>(optopt) + " takes an argument, and none is given";
        }
        take_decoder_option(key, optarg, options.decoders);
    }
    complete_mode_flags(options.decoders.mode_flags);
    options.files.assign(arguments.begin() + optind, arguments.begin() + count);
    return "";
}

}  // namespace

bool parse_options(int argc, char** argv, read_options& options, std::string& error) {
    command_line line;
    line.option("--type", "the code of an interface type", number(options.channel_type, -0x8000, 0xFFFF));
    line.option("--sent", "none, all, a MAC address or an IPv4 address",
                parsed(options.sent, capture::parse_sent_rule));
    line.option_or_flag("--color", "auto, always or never",
                        one_of(options.color, {{"", color_choice::ALWAYS},
                                               {"always", color_choice::ALWAYS},
                                               {"never", color_choice::NEVER},
                                               {"auto", color_choice::AUTO}}));
    line.flag("--report", options.report);
    line.help("--help", options.help);
    std::vector<std::string> others;
    if (line.parse_known(argc, argv, others, error)) {
        error = take_decoder_options(std::move(others), options);
    }
    return error.empty();
}

}  // namespace ifwatch::read
