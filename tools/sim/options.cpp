#include "sim/options.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "command_line/command_line.h"

namespace ifwatch::sim {

namespace {

constexpr std::int64_t MAX_COUNT = std::numeric_limits<std::uint32_t>::max();

std::optional<double> parse_positive(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    const bool right = end != text.c_str() && *end == '\0' && std::isfinite(value) && value > 0;
    return right ? std::optional(value) : std::nullopt;
}

std::optional<double> parse_pace(const std::string& text) { return parse_positive(text == "real" ? "1" : text); }

void add_serving(command_line& line, daemon_setup& setup) {
    line.option("--listen", "an IPv4 address", nonempty_text(setup.listen));
    line.option("--port", "a port from 0 to 65535", number(setup.port, 0, 0xFFFF));
    line.option("--port-file", "a file name", nonempty_text(setup.port_file));
    line.option("--password", "a text", any_text(setup.password));
    line.flag("--once", [&setup] { setup.sessions = 1; });
    line.option("--sessions", "a number of sessions above 0", number(setup.sessions, 1, MAX_COUNT));
    line.flag("-v,--verbose", setup.verbose);
    line.option("--pace", "real or a factor above 0", parsed(setup.pace, parse_pace));
    line.option("--rate", "a number of records a second above 0", parsed(setup.rate, parse_positive));
    line.option("--together", "a number of traces above 0", number(setup.together, 1, MAX_COUNT));
    line.option("--loop", "a number of rounds, 0 for no end", number(setup.loops, 0, MAX_COUNT));
}

void add_other_daemons(command_line& line, daemon_setup& setup) {
    line.option("--version", "1, 2 or 3", number(setup.version, 1, 3));
    line.option("--refuse", "reply, close or serve",
                one_of(setup.on_other_version,
                       {{"reply", refusal::REPLY}, {"close", refusal::CLOSE}, {"serve", refusal::SERVE}}));
    line.option("--error", "a text", nonempty_text(setup.error_text));
    line.option("--close-after", "connect, request, version, challenge, login, addinfo, chantype or reply",
                one_of(setup.close_after, {{"connect", session_step::CONNECT},
                                           {"request", session_step::REQUEST},
                                           {"version", session_step::VERSION},
                                           {"challenge", session_step::CHALLENGE},
                                           {"login", session_step::LOGIN},
                                           {"addinfo", session_step::ADDINFO},
                                           {"chantype", session_step::CHANTYPE},
                                           {"reply", session_step::REPLY}}));
    line.option("--limit", "a number of traces above 0", number(setup.limit, 1, MAX_COUNT));
    line.option("--fault",
                "one of mute, refuse, cut=N, stall=N, drip, silence=N, swap=N, restart=N, length=record:N:LENGTH and "
                "length=element:TYPE:LENGTH, once for an interface",
                [&setup](const std::string& text) { return add_fault(text, setup.faults); });
}

constexpr char HELP[] =
    R"(ifwatch-sim: plays the trace daemon of a router from case files.

Examples:
  ifwatch-sim demo.case                     serve one interface; watch it with
                                            ifwatch --pwd=admin 127.0.0.1 1000
  ifwatch-sim --pace real lan.case isdn.case
                                            two interfaces, frames at the speed of their time stamps
  ifwatch-sim --port 0 --once demo.case     any free port, end after one trace
  ifwatch-sim --version 1 --refuse serve isdn.case
                                            an old router, as ifwatch -V1 probes its channels
  ifwatch-sim --fault cut=3 demo.case       the connection breaks inside the third record
  ifwatch-sim import lan.pcap -o lan.case   any capture becomes a case ("import --help" tells more)
  ifwatch-sim export lan.case -o lan.pcap   and a case a capture ("export --help")

Usage: ifwatch-sim [OPTIONS] CASE...
       ifwatch-sim import|export [OPTIONS] FILE

Each case file holds one interface: its channel type, its index (an "interface" line; 1000 when there is only one
case) and the records that cross it.
  # A comment.
  channel 0                       channel type: 0 ISDN D-channel, 1 ISDN B-channel, 3 ATM, 6 LAN, 131 tunnel ...
  interface 1000                  its index: 1000 * slot + 100 * unit + channel
  record R 1000                   R received or X sent by the router, time stamp in ms
    02 01 7F "text" 00*16         indented: the octets
  record X 1250 sequence=7 flags=0x81 info=0x00002300 original=64

Serving:
  --listen ADDR       address to listen on (127.0.0.1)
  --port N            port to listen on (7000); 0 takes any free one
  --port-file FILE    write the port to FILE
  --password TEXT     the password of the login (admin)
  --once              end after one trace session
  --sessions N        end after N trace sessions
  -v, --verbose       report each client on the error stream
The first line on the standard output is "listening on ADDR:PORT".

Pace (full speed unless told otherwise):
  --pace real         send records at the speed of their time stamps
  --pace FACTOR       that many times as fast
  --rate N            send N records a second
  --together N        send nothing before N traces have begun; their records are then on one clock, which stands where
                      the earliest record of all cases is
  --loop N            send the records N times, 0 for no end; time stamps and sequence numbers go on

Other daemons:
  --version N         speak only version N (1, 2 or 3)
  --refuse STYLE      a client of another version: "reply" tells it the version inside the reply and closes (the
                      default), "close" closes at once, "serve" serves it in version N
  --error TEXT        send an error element with TEXT instead of the reply
  --close-after STEP  close behind a step of the session: connect, request, version, challenge, login, addinfo,
                      chantype or reply

  --limit N           trace N interfaces at a time; more are refused

Faults, one for all interfaces, and one for any with @INDEX behind it, as in cut=3@2101:
  --fault mute        take the trace request, then say nothing, and keep the connection
  --fault refuse      list the interface, but refuse to trace it
  --fault cut=N       cut the connection in the middle of record N
  --fault stall=N     send half of record N, then nothing, and keep the connection
  --fault drip        send every octet on its own; for all interfaces only
  --fault silence=N   send N records, then nothing, and keep the connection
  --fault swap=N      records N and N + 1 have each other's time
  --fault restart=N   from record N on, time and sequence number are those of a router that has just started
  --fault length=record:N:LENGTH      record N tells LENGTH as its length
  --fault length=element:TYPE:LENGTH  elements of TYPE tell LENGTH as their length

Exit status: 0 after the sessions asked for, or an interrupt or terminate signal; 2 for a mistake on the command line,
in a case file, or when the port cannot be opened.
)";

}  // namespace

bool parse_options(int argc, char** argv, sim_options& options, std::string& error) {
    command_line line;
    line.help("-h,--help", options.help);
    add_serving(line, options.setup);
    add_other_daemons(line, options.setup);
    if (!line.parse(argc, argv, options.cases, error) || options.help) {
        return error.empty();
    }
    if (options.setup.pace > 0 && options.setup.rate > 0) {
        error = "--pace and --rate exclude each other";
    } else if (options.cases.empty()) {
        error = "no case file given";
    }
    return error.empty();
}

const char* help_text() { return HELP; }

}  // namespace ifwatch::sim
