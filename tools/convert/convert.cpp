#include "convert/convert.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <string_view>

#include "capture/byte_stream.h"
#include "capture/sent_text.h"
#include "command_line/command_line.h"
#include "command_line/text_parts.h"
#include "convert/capture_export.h"
#include "convert/capture_import.h"
#include "convert/output_file.h"

namespace ifwatch::convert {

namespace {

constexpr std::int64_t MAX_32_BIT = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t MAX_LINK_TYPE = 0xFFFF;

/// What a command line asks for, import and export alike.
struct conversion {
    std::string output;  // empty or "-": the standard output
    import_settings import;
    std::optional<std::uint32_t> link_type;
};

constexpr char IMPORT_HELP[] =
    R"(ifwatch-sim import: makes a case file of a capture, so that ifwatch decodes it.

Examples:
  ifwatch-sim import lan.pcap -o lan.case                    then: ifwatch-sim lan.case
  ifwatch-sim import lan.pcap -o lan.case --sent 192.0.2.1   what that host sent is shown as sent by the router
  ifwatch-sim import x.pcap --channel 0                      link type 0: the user knows that it is a D-channel
  zcat lan.pcapng.gz | ifwatch-sim import -                  from the standard input

Usage: ifwatch-sim import [OPTIONS] FILE

  -o, --output FILE      the case file; standard output otherwise
  -c, --channel TYPE     the channel type, instead of the one that fits the link type
  -i, --interface INDEX  the interface to serve it as
      --options TEXT     the options for the viewer, instead of those that show every layer
  -s, --sent WHAT        what the router sent, where the file does not tell: none (the default), all, or what comes
                         from a MAC or IPv4 address (Ethernet, Token Ring and IP captures)
      --start MS         the time stamp of the first packet (0); the others follow from it

The file is classic PCAP, in either byte order, with micro- or nanoseconds, or pcapng; it may have any size. A case is
one interface: packets of several channel types are a mistake, unless ifwatch-extcap wrote them; then those of --channel
are taken. Link types and channel types:
  1 Ethernet: 6                        177, 203 LAPD: 0
  6 Token Ring: 9                      100, 123 ATM: 3
  9, 50, 204 PPP: 1                    101, 228 IP: 131
  104, 205 Cisco HDLC: 1               107, 206 Frame Relay: 1
  207 LAPB: 1                          113, 276 Linux cooked: 6, with an Ethernet header made of theirs
  any other: as --channel says
The direction is in a pcapng file, or with 113, 123, 177, 204 to 207 and 276. Of a frame the first 8192 octets are kept.

Exit status: 0, or 2 for a mistake on the command line or in the file; then there is no case file.
)";

constexpr char EXPORT_HELP[] =
    R"(ifwatch-sim export: makes a PCAP file of a case file, for any analyser.

Example:
  ifwatch-sim export isdn.case -o isdn.pcap

Usage: ifwatch-sim export [OPTIONS] FILE.case

  -o, --output FILE      the PCAP file; standard output otherwise
  -l, --link-type N      the link type, instead of the one that fits the channel type

Channel types and link types, those that tell the direction where there are such:
  0 D-channel: 177                     1 B-channel: see below; 23 PPP: 204
  2, 3 ATM: 123                        6, 7, 135 LAN: 1
  8, 9 token rings and buses: 6        16 LAPB: 207
  32 Frame Relay: 107                  118 HDLC: 104
  5 IP over X.25, 131 tunnel: 101      any other: as --link-type says
What a B-channel carries follows from the letters in the first options line of the case: with p, or without options, PPP
(204); else with 2 or 3 LAPB (207); else with f Frame Relay (107); with any others name a link type.
Records that are no frames (events of the line, single ATM cells) are left out, and counted on the error stream.

Exit status: 0, or 2 for a mistake on the command line or in the file; then nothing is written.
)";

/// Reads the capture from the descriptor and writes the case.
bool import_from(int fd, const std::string& path, const conversion& wanted, std::string& note, std::string& error) {
    capture::byte_stream stream(fd);
    output_file output(wanted.output);
    bool open = false;  // not before there is something to write
    const auto write = [&](std::string_view part) {
        open = open || output.open(error);
        return open && output.write(part, error);
    };
    const std::string name = path == "-" ? "standard input" : path.substr(path.rfind('/') + 1);
    const import_outcome outcome = import_capture(stream, wanted.import, name, write);
    if (!outcome.error.empty()) {
        error = (path == "-" ? name : path) + ": " + outcome.error;
    }
    if (outcome.left_out != 0) {
        note = path + ": " + std::to_string(outcome.left_out) + " of " + std::to_string(outcome.packets) +
               " packets left out, which are of other interfaces";
    }
    return outcome.done && output.finish(error);
}

bool import_file(const std::string& path, const conversion& wanted, std::string& note, std::string& error) {
    if (path == "-") {
        return import_from(STDIN_FILENO, path, wanted, note, error);
    }
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    const bool done = import_from(fd, path, wanted, note, error);
    close(fd);
    return done;
}

bool export_file(const std::string& path, const conversion& wanted, std::string& note, std::string& error) {
    cases::trace_case exported;
    std::vector<std::uint8_t> file;
    std::size_t left_out = 0;
    if (!cases::read_case_file(path, exported, error)) {
        return false;
    }
    if (!export_capture(exported, wanted.link_type, file, left_out, error)) {
        error = path + ":" + std::to_string(exported.channel_line) + ": " + error;
        return false;
    }
    if (left_out != 0) {
        note = path + ": " + std::to_string(left_out) + " of " + std::to_string(exported.records.size()) +
               " records left out, which are no frames";
    }
    return write_output(wanted.output, file, error);
}

void add_import_options(command_line& line, import_settings& import) {
    line.option("-c,--channel", "the code of a channel type from -32768 to 65535",
                number(import.channel_type, -0x8000, 0xFFFF));
    line.option("-i,--interface", "an interface index from 0 to 2147483647",
                number(import.interface_index, 0, std::numeric_limits<std::int32_t>::max()));
    line.option("--options", "the options for the viewer, without #", [&import](const std::string& text) {
        import.viewer_options = text;
        return text.find_first_of("#\r\n") == std::string::npos;
    });
    line.option("-s,--sent", "none, all, a MAC address or an IPv4 address",
                parsed(import.sent, capture::parse_sent_rule));
    line.option("--start", "a time stamp in ms from 0 to 4294967295", number(import.start_ms, 0, MAX_32_BIT));
}

}  // namespace

bool asks_for_conversion(int argc, char** argv) {
    const std::string_view word = argc > 1 ? argv[1] : "";
    return word == "import" || word == "export";
}

bool convert(int argc, char** argv, std::string& note, std::string& error) {
    const std::string asked = argv[1];
    const bool imports = asked == "import";
    conversion wanted;
    std::vector<std::string> files;
    bool help = false;
    command_line line;
    line.help("-h,--help", help);
    line.option("-o,--output", "a file name", nonempty_text(wanted.output));
    if (imports) {
        add_import_options(line, wanted.import);
    } else {
        line.option("-l,--link-type", "a link type from 0 to 65535", number(wanted.link_type, 0, MAX_LINK_TYPE));
    }
    if (line.parse(argc - 1, argv + 1, files, error) && !help && files.size() != 1) {
        error = files.empty() ? "no file given" : "one file at a time, not also " + in_quotes(files[1]);
    }
    if (!error.empty()) {
        error = asked + ": " + error + " (" + asked + " --help tells more)";
        return false;
    }
    if (help) {
        return write_output("", std::string_view(imports ? IMPORT_HELP : EXPORT_HELP), error);
    }
    wanted.output = wanted.output == "-" ? "" : wanted.output;
    return (imports ? import_file : export_file)(files.front(), wanted, note, error);
}

}  // namespace ifwatch::convert
