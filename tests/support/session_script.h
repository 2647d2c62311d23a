#pragma once

#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/trace_records.h"

namespace ifwatch::test {

inline constexpr std::size_t AUTH_REPLY_LENGTH = 13;
inline constexpr std::size_t PLAIN_ADDINFO_LENGTH = 8;  // START and the end element

/// The first word of a trace request.
inline int version_of(const std::vector<std::uint8_t>& request) { return request.size() < 4 ? -1 : request[3]; }

/// Version 3 up to the client's add-info: announces itself, challenges, takes the reply as it is.
inline void log_in(const tcp_peer& client, std::size_t addinfo_length = PLAIN_ADDINFO_LENGTH) {
    client.receive(TRACE_REQUEST_OCTETS);
    client.send_element(2, {3});
    client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
    client.receive(AUTH_REPLY_LENGTH + addinfo_length);
}

/// A version-3 daemon that sends `reply` behind the login and closes.
inline scripted_daemon::script replying(std::vector<std::uint8_t> reply) {
    return [reply = std::move(reply)](const tcp_peer& client) {
        log_in(client);
        client.send(reply);
    };
}

/// A version-3 daemon that challenges with these octets, keeps the answer in `reply`, and ends the session.
inline scripted_daemon::script logging_in_to(std::vector<std::uint8_t>& reply, std::vector<std::uint8_t> challenge) {
    return [&reply, challenge = std::move(challenge)](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        client.send_element(10, std::string(challenge.begin(), challenge.end()));
        reply = client.receive(AUTH_REPLY_LENGTH);
        client.send_element(0);
    };
}

/// A command line against the daemon.
inline command tracing(const scripted_daemon& daemon, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), daemon.port_option());
    return {.program = IFWATCH_PROGRAM, .arguments = std::move(arguments)};
}

inline outcome trace(const scripted_daemon& daemon, std::vector<std::string> arguments, const std::string& input = "") {
    command what = tracing(daemon, std::move(arguments));
    what.input = input;
    return run(what);
}

inline std::string connected_to(const scripted_daemon& daemon) {
    return "ifwatch: connected to 127.0.0.1:" + std::to_string(daemon.port()) + "\n";
}

/// The report line on interface 1000.
inline std::string report_of(const std::string& type, const std::string& text) {
    return "Ifc:1000 (Chan:0 Unit:0 Slot:1) Type: " + type + "\n " + text + "\n";
}

inline constexpr const char* NO_TYPE = "-1 (not-found)";
inline constexpr const char* STREAM_END = "trc hdr too short! = 0<22\n";

}  // namespace ifwatch::test
