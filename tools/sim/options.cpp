#include "sim/options.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <span>
#include <string_view>

#include "sim/option_table.h"
#include "sim/text_parts.h"

namespace ifwatch::sim {

namespace {

constexpr std::int64_t MAX_COUNT = std::numeric_limits<std::uint32_t>::max();

bool parse_port(const std::string& text, daemon_setup& setup) {
    const auto value = parse_number(text, 0, 0xFFFF);
    setup.port = static_cast<std::uint16_t>(value.value_or(0));
    return value.has_value();
}

bool parse_version(const std::string& text, daemon_setup& setup) {
    const auto value = parse_number(text, 1, 3);
    setup.version = static_cast<int>(value.value_or(0));
    return value.has_value();
}

/// One of the words of a table.
template <class Value>
struct named_choice {
    std::string_view word;
    Value value;
};

template <class Value, std::size_t N>
bool parse_choice(const named_choice<Value> (&choices)[N], const std::string& text, Value& chosen) {
    for (const named_choice<Value>& choice : choices) {
        if (choice.word == text) {
            chosen = choice.value;
            return true;
        }
    }
    return false;
}

constexpr named_choice<refusal> REFUSALS[] = {
    {"reply", refusal::REPLY}, {"close", refusal::CLOSE}, {"serve", refusal::SERVE}};

constexpr named_choice<session_step> STEPS[] = {
    {"connect", session_step::CONNECT},     {"request", session_step::REQUEST}, {"version", session_step::VERSION},
    {"challenge", session_step::CHALLENGE}, {"login", session_step::LOGIN},     {"addinfo", session_step::ADDINFO},
    {"chantype", session_step::CHANTYPE},   {"reply", session_step::REPLY},
};

bool parse_positive(const std::string& text, double& value) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0' && std::isfinite(value) && value > 0;
}

bool parse_count(const std::string& text, std::int64_t minimum, std::uint64_t& count) {
    const auto value = parse_number(text, minimum, MAX_COUNT);
    count = static_cast<std::uint64_t>(value.value_or(0));
    return value.has_value();
}

bool set_listen(const std::string& text, daemon_setup& setup) {
    setup.listen = text;
    return !text.empty();
}
bool set_port_file(const std::string& text, daemon_setup& setup) {
    setup.port_file = text;
    return !text.empty();
}
bool set_password(const std::string& text, daemon_setup& setup) {
    setup.password = text;
    return true;
}
bool set_refusal(const std::string& text, daemon_setup& setup) {
    return parse_choice(REFUSALS, text, setup.on_other_version);
}
bool set_error(const std::string& text, daemon_setup& setup) {
    setup.error_text = text;
    return !text.empty();
}
bool set_close_after(const std::string& text, daemon_setup& setup) {
    return parse_choice(STEPS, text, setup.close_after);
}
bool set_pace(const std::string& text, daemon_setup& setup) {
    return parse_positive(text == "real" ? "1" : text, setup.pace);
}
bool set_rate(const std::string& text, daemon_setup& setup) { return parse_positive(text, setup.rate); }
bool set_loop(const std::string& text, daemon_setup& setup) { return parse_count(text, 0, setup.loops); }
bool set_sessions(const std::string& text, daemon_setup& setup) { return parse_count(text, 1, setup.sessions); }
bool set_limit(const std::string& text, daemon_setup& setup) { return parse_count(text, 1, setup.limit); }
bool set_together(const std::string& text, daemon_setup& setup) { return parse_count(text, 1, setup.together); }
bool set_once(const std::string& /*text*/, daemon_setup& setup) {
    setup.sessions = 1;
    return true;
}
bool set_fault(const std::string& text, daemon_setup& setup) { return add_fault(text, setup.faults); }
bool set_verbose(const std::string& /*text*/, daemon_setup& setup) {
    setup.verbose = true;
    return true;
}

constexpr known_option<daemon_setup> OPTIONS[] = {
    {"listen", 0, set_listen, "an IPv4 address"},
    {"port", 0, parse_port, "a port from 0 to 65535"},
    {"port-file", 0, set_port_file, "a file name"},
    {"password", 0, set_password, "a text"},
    {"version", 0, parse_version, "1, 2 or 3"},
    {"refuse", 0, set_refusal, "reply, close or serve"},
    {"error", 0, set_error, "a text"},
    {"close-after", 0, set_close_after, "connect, request, version, challenge, login, addinfo, chantype or reply"},
    {"pace", 0, set_pace, "real or a factor above 0"},
    {"rate", 0, set_rate, "a number of records a second above 0"},
    {"loop", 0, set_loop, "a number of rounds, 0 for no end"},
    {"sessions", 0, set_sessions, "a number of sessions"},
    {"once", 0, set_once, nullptr},
    {"limit", 0, set_limit, "a number of traces"},
    {"together", 0, set_together, "a number of traces"},
    {"fault", 0, set_fault,
     "one of mute, refuse, cut=N, stall=N, drip, silence=N, swap=N, restart=N, length=record:N:LENGTH and "
     "length=element:TYPE:LENGTH, once for an interface"},
    {"verbose", 'v', set_verbose, nullptr},
    {"help", 'h', nullptr, nullptr},
};

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
    const std::span<const known_option<daemon_setup>> table(OPTIONS);
    if (!apply_options(argc, argv, table, options.setup, options.cases, options.help, error) || options.help) {
        return options.help;
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
