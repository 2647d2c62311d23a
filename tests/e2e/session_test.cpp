// Session set-up against a scripted daemon: every message, every way it can end, in all three versions.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

TEST(connecting, port_from_the_environment_wins_and_may_be_hexadecimal) {
    const scripted_daemon daemon([](const tcp_peer& client) { client.receive(TRACE_REQUEST_OCTETS); });
    char hexadecimal[16];
    std::snprintf(hexadecimal, sizeof hexadecimal, "0x%x", static_cast<unsigned>(daemon.port()));
    const outcome got = run({.program = IFWATCH_PROGRAM,
                             .arguments = {"-P1", "-V1", "127.0.0.1", "1000"},
                             .environment = {{"TRACE_PORT", hexadecimal}}});
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "negative trace acknowledge"));
}

TEST(connecting, illegal_port_in_the_environment) {
    for (const char* const port : {"70x", "", "x", "0x", "7000 "}) {
        const outcome got = run(
            {.program = IFWATCH_PROGRAM, .arguments = {"127.0.0.1", "1000"}, .environment = {{"TRACE_PORT", port}}});
        EXPECT_EQ(got.errors, "Illegal TCP Port Setting " + std::string(port) + "!\n");
        EXPECT_EQ(got.status, 1);
    }
}

TEST(connecting, illegal_hosts) {
    for (const std::string host : {"0.0.0.0", "255.255.255.255", "no-such-host.invalid"}) {
        const outcome got = run({.program = IFWATCH_PROGRAM, .arguments = {host, "1000"}});
        EXPECT_EQ(got.errors, "Illegal Host Setting " + host + "!\n");
        EXPECT_EQ(got.status, 1);
    }
}

TEST(connecting, the_first_address_that_the_resolver_lists) {
    const temp_directory directory;
    const std::string hosts = directory.write("hosts", "127.0.0.5 two.test\n127.0.0.1 two.test\n");
    // A name space of its own, where the hosts file is another.
    const std::string own_hosts = "mount --bind \"$0\" /etc/hosts || exit 77; exec \"$@\"";
    const outcome got = run({.program = "unshare",
                             .arguments = {"--map-root-user", "--mount", "sh", "-c", own_hosts, hosts, IFWATCH_PROGRAM,
                                           "-vv", "-P1", "two.test", "1000"},
                             .environment = {{"ASAN_OPTIONS", "detect_leaks=0"}}});
    if (got.errors.find("try connect to") == std::string::npos) {
        GTEST_SKIP() << "no mount name space of one's own here: " << got.errors;
    }
    EXPECT_EQ(got.errors, "try connect to 127.0.0.5:1\nERROR connect (Connection refused)\n");
}

TEST(connecting, a_dotted_address_with_a_blank_behind_it) {
    const scripted_daemon daemon([](const tcp_peer& client) { client.receive(TRACE_REQUEST_OCTETS); });
    const outcome got = trace(daemon, {"-V1", "127.0.0.1 ", "1000"});
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "negative trace acknowledge"));
}

TEST(connecting, refused) {
    int free_port = 0;
    {
        const scripted_daemon gone([](const tcp_peer&) {});
        free_port = gone.port();
    }
    const outcome got =
        run({.program = IFWATCH_PROGRAM, .arguments = {"-vv", "-P" + std::to_string(free_port), "127.0.0.1", "1000"}});
    EXPECT_EQ(got.errors,
              "try connect to 127.0.0.1:" + std::to_string(free_port) + "\nERROR connect (Connection refused)\n");
    EXPECT_EQ(got.status, 1);
}

TEST(version_1, acknowledge_octet_is_the_channel_type) {
    std::vector<std::uint8_t> request;
    const scripted_daemon daemon([&request](const tcp_peer& client) {
        request = client.receive(TRACE_REQUEST_OCTETS);
        client.send({0xFE});
    });
    const outcome got = trace(daemon, {"-V1", "-r64", "127.0.0.1", "3", "2", "1"});
    EXPECT_EQ(request, (std::vector<std::uint8_t>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 64}));
    EXPECT_EQ(got.errors, connected_to(daemon) + "Ifc:1203 (Chan:3 Unit:2 Slot:1) Type: -2 (PABX)\n \n" + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(version_1, without_an_acknowledge_octet) {
    const scripted_daemon daemon([](const tcp_peer& client) { client.receive(TRACE_REQUEST_OCTETS); });
    const outcome got = trace(daemon, {"-V1", "127.0.0.1", "1000"});
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "negative trace acknowledge"));
    EXPECT_EQ(got.status, 1);
}

TEST(version_2, sends_the_addinfo_without_a_login) {
    std::vector<std::uint8_t> sent;
    const scripted_daemon daemon([&sent](const tcp_peer& client) {
        sent = client.receive(TRACE_REQUEST_OCTETS + PLAIN_ADDINFO_LENGTH);
        client.send_element(1, {6});
        client.send_element(0);
    });
    const outcome got = trace(daemon, {"-V2", "127.0.0.1", "1000"});
    ASSERT_EQ(sent.size(), TRACE_REQUEST_OCTETS + PLAIN_ADDINFO_LENGTH);
    EXPECT_EQ(version_of(sent), 2);
    EXPECT_EQ(std::vector<std::uint8_t>(sent.begin() + TRACE_REQUEST_OCTETS, sent.end()),
              (std::vector<std::uint8_t>{0, 0, 0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(version_2, zero_and_negative_versions_go_its_way) {
    for (const std::string version : {"-V0", "-V-5"}) {
        const scripted_daemon daemon([](const tcp_peer& client) {
            client.receive(TRACE_REQUEST_OCTETS);  // below 2 a request without filters has no add-info
            client.send_element(0);
        });
        EXPECT_EQ(trace(daemon, {version, "127.0.0.1", "1000"}).status, 0) << version;
    }
}

TEST(version_3, logs_in_with_the_digest_of_the_password) {
    std::vector<std::uint8_t> reply;
    const scripted_daemon daemon([&reply](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
        reply = client.receive(AUTH_REPLY_LENGTH);
        client.send_element(1, {0});
        client.send_element(0);
    });
    const outcome got = trace(daemon, {"--pwd=secret", "127.0.0.1", "1000"});
    // printf 'secret\x01\x11\x22\x33\x44\x55\x66\x77\x88secretadmin' | md5sum
    EXPECT_EQ(reply, (std::vector<std::uint8_t>{0, 0, 9, 10, 1, 0xED, 0xB2, 0xA4, 0xC4, 0xE1, 0x65, 0x86, 0x19}));
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of("0 (ISDN D-channel)", "") + STREAM_END);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.status, 0);
}

TEST(version_3, tells_everything_at_the_highest_verbosity) {
    const scripted_daemon daemon(replying({0, 0, 2, 1, 0, 6, 0, 0, 0, 0}));
    const outcome got = trace(daemon, {"-vvv", "--pwd=secret", "127.0.0.1", "1000"});
    const std::string port = std::to_string(daemon.port());
    EXPECT_EQ(got.errors, "try connect to 127.0.0.1:" + port + "\n" + connected_to(daemon) +
                              "written vtrace: V.3, 1/0/0 tlen: -1\n"
                              "got RVERSION 3\n"
                              "got AUTH random (V.1): 0x4433221188776655\n"
                              "calced auth: 0xc4a4b2ed198665e1\n"
                              "written AUTH (len 13)\n"
                              "written addinfo len:8\n"
                              "got ELEM 1 (len 2)\n"
                              "got ELEM 0 (len 0)\n" +
                              report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(got.output,
              "0000: 00 00 09 0a 01 ed b2 a4  c4 e1 65 86 19           ..........e..   \n"
              "0000: 00 00 00 03 00 00 00 00                           ........        \n"
              "0000: 00 06                                             ..              \n");
}

TEST(version_3, tells_less_at_lower_levels) {
    const scripted_daemon daemon(replying({0, 0, 1, 1, 6, 0, 0, 0, 0}));
    const outcome once = trace(daemon, {"-v", "--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(once.errors, connected_to(daemon) + "got RVERSION 3\n" + report_of("6 (LAN)", "") + STREAM_END);
    const outcome twice = trace(daemon, {"-v", "-v", "--pwd=secret", "127.0.0.1", "1000"});
    EXPECT_EQ(twice.errors, "try connect to 127.0.0.1:" + std::to_string(daemon.port()) + "\n" + connected_to(daemon) +
                                "written vtrace: V.3, 1/0/0 tlen: -1\ngot RVERSION 3\n"
                                "got AUTH random (V.1): 0x4433221188776655\nwritten AUTH (len 13)\n"
                                "written addinfo len:8\ngot ELEM 1 (len 1)\ngot ELEM 0 (len 0)\n" +
                                report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(twice.output, "");
}

TEST(version_3, without_its_version_the_client_falls_back_to_version_1) {
    std::atomic<int> second_version = -1;
    const scripted_daemon daemon({[](const tcp_peer& client) {
                                      client.receive(TRACE_REQUEST_OCTETS);
                                      client.send_element(2, {3, 0});
                                  },
                                  [&second_version](const tcp_peer& client) {
                                      second_version = version_of(client.receive(TRACE_REQUEST_OCTETS));
                                      client.send({6});
                                  }});
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(second_version, 1);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "no RVERSION received") + connected_to(daemon) +
                              report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(version_3, a_second_failure_is_final) {
    std::atomic<int> connections = 0;
    const scripted_daemon daemon([&connections](const tcp_peer& client) {
        ++connections;
        client.receive(TRACE_REQUEST_OCTETS);
    });
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(connections, 2);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "missing elem header data") + connected_to(daemon) +
                              report_of(NO_TYPE, "negative trace acknowledge"));
    EXPECT_EQ(got.status, 1);
}

TEST(version_3, without_a_challenge) {
    const scripted_daemon daemon([](const tcp_peer& client) {
        if (version_of(client.receive(TRACE_REQUEST_OCTETS)) == 3) {
            client.send_element(2, {3});
            client.send_element(1, {6});
        }
    });
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "no authentication received") +
                              connected_to(daemon) + report_of(NO_TYPE, "negative trace acknowledge"));
}

TEST(version_3, a_challenge_without_octets_adds_none_to_the_digest) {
    std::vector<std::uint8_t> reply;
    const scripted_daemon daemon([&reply](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        client.send_element(10, std::initializer_list<int>{});
        reply = client.receive(AUTH_REPLY_LENGTH);
        client.send_element(0);
    });
    EXPECT_EQ(trace(daemon, {"--pwd=", "127.0.0.1", "1000"}).status, 0);
    // printf admin | md5sum
    EXPECT_EQ(reply, (std::vector<std::uint8_t>{0, 0, 9, 10, 0, 0x21, 0x23, 0x2F, 0x29, 0x7A, 0x57, 0xA5, 0xA7}));
}

TEST(reply, another_version_is_tried_when_the_daemon_asks_for_it) {
    std::atomic<int> second_version = -1;
    const scripted_daemon daemon({[](const tcp_peer& client) {
                                      log_in(client);
                                      client.send_element(2, {2});
                                  },
                                  [&second_version](const tcp_peer& client) {
                                      second_version =
                                          version_of(client.receive(TRACE_REQUEST_OCTETS + PLAIN_ADDINFO_LENGTH));
                                      client.send_element(1, {1});
                                      client.send_element(0);
                                  }});
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(second_version, 2);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "missing elem header data") + connected_to(daemon) +
                              report_of("1 (ISDN B-channel)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

struct reply_case {
    const char* name;
    std::vector<std::uint8_t> reply;
    const char* messages;  // before the report line
    const char* type;
    const char* text;
    int connections = 1;
};

void PrintTo(const reply_case& test, std::ostream* out) { *out << test.name; }

class refused_reply : public testing::TestWithParam<reply_case> {};

TEST_P(refused_reply, ends_the_session) {
    std::atomic<int> connections = 0;
    const scripted_daemon daemon([&connections](const tcp_peer& client) {
        if (++connections == 1) {
            log_in(client);
            client.send(GetParam().reply);
        }
    });
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    const std::string first = connected_to(daemon) + GetParam().messages + report_of(GetParam().type, GetParam().text);
    EXPECT_EQ(got.errors.substr(0, first.size()), first);
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(connections, GetParam().connections);
}

INSTANTIATE_TEST_SUITE_P(
    replies, refused_reply,
    testing::Values(
        reply_case{"nothing", {}, "", "-1 (not-found)", "missing elem header data", 2},
        reply_case{"header_cut", {0, 0}, "", "-1 (not-found)", "missing elem header data", 2},
        reply_case{"data_cut", {0, 0, 2, 1, 0}, "", "-1 (not-found)", "missing elem data", 2},
        reply_case{"cut_behind_an_element", {0, 0, 1, 1, 6, 0}, "", "6 (LAN)", "missing elem header data"},
        reply_case{"too_long", {0, 0, 100, 5}, "", "-1 (not-found)", "read buffer overflow", 2},
        reply_case{
            "error_text", {0, 0, 1, 1, 6, 0, 0, 7, 5, 'n', 'o', ' ', 'l', 'i', 'n', 'e'}, "", "6 (LAN)", "no line"},
        reply_case{"empty_error_text", {0, 0, 0, 5}, "", "-1 (not-found)", ""},
        reply_case{"error_of_open_length", {0xFF, 0xFF, 0xFF, 5}, "", "-1 (not-found)", ""},
        reply_case{"start", {0, 0, 0, 3}, "received elem 00000003\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{
            "filter", {0xFF, 0xFF, 0xFF, 6}, "received elem ffffff06\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{"vci", {0, 0, 2, 7, 1, 2}, "received elem 00000207\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{"vpi", {0, 0, 1, 8, 1}, "received elem 00000108\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{"line_flag", {0, 0, 0, 9}, "received elem 00000009\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{
            "second_challenge", {0, 0, 0, 10}, "received elem 0000000a\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{"unknown_type", {0, 0, 0, 200}, "received elem 000000c8\n", "-1 (not-found)", "received wrong ELEM"},
        reply_case{"version_zero", {0, 0, 1, 2, 0}, "", "-1 (not-found)", "missing elem header data"},
        reply_case{"version_missing", {0, 0, 0, 2}, "", "-1 (not-found)", "missing elem header data"},
        reply_case{"version_200", {0, 0, 1, 2, 200}, "", "-1 (not-found)", "missing elem header data", 2},
        reply_case{"a_later_element_takes_the_version_back",
                   {0, 0, 1, 2, 2, 0, 0, 0, 4},
                   "",
                   "-1 (not-found)",
                   "missing elem header data"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(reply, elements_that_change_nothing) {
    // An ignored element, a channel type and an interface of wrong lengths, then the channel type in two octets.
    const scripted_daemon daemon(replying({0,    0,    3,    4,  1, 2, 3,  //
                                           0,    0,    3,    1,  0, 0, 9,  //
                                           0xFF, 0xFF, 0xFF, 1,            //
                                           0,    0,    2,    11, 0, 1,     //
                                           0,    0,    2,    1,  0, 6, 0, 0, 0, 0}));
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    EXPECT_EQ(got.errors, connected_to(daemon) +
                              "wrong CHANTYPE len 3\nwrong CHANTYPE len 16777215\nwrong INFO elem len 2 != 8\n" +
                              report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(list, shows_every_interface_and_ends_with_the_stream) {
    std::vector<std::uint8_t> addinfo;
    std::vector<std::uint8_t> request;
    const scripted_daemon daemon([&](const tcp_peer& client) {
        request = client.receive(TRACE_REQUEST_OCTETS);
        client.send_element(2, {3});
        client.send_element(10, {1, 1, 2, 3, 4, 5, 6, 7, 8});
        client.receive(AUTH_REPLY_LENGTH);
        addinfo = client.receive(PLAIN_ADDINFO_LENGTH);
        client.send_element(11, {0, 0, 0x08, 0x34, 0, 0, 9, 9});
        client.send_element(11, {0, 0, 0x03, 0xEB, 0, 7, 0, 0});
        client.send_element(11, {0, 1, 0x86, 0xA1, 0, 131, 0, 0});
        client.send_element(11, {0, 0, 0, 1, 0, 200, 0, 0});
        client.send_element(11, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0, 0});
        client.send_element(0);
    });
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1"});
    EXPECT_EQ(request,
              (std::vector<std::uint8_t>{0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(addinfo, (std::vector<std::uint8_t>{0, 0, 0, 11, 0, 0, 0, 0}));
    EXPECT_EQ(got.errors, connected_to(daemon) +
                              "Ifc:    2100 Type:   0 (ISDN D-channel)\n"
                              "Ifc:    1000 Type:   7 (LAN 802.3)\n"
                              "Ifc:  100001 Type: 131 (Tunnel)\n"
                              "Ifc:       1 Type: 200 (unknown)\n"
                              "Ifc:      -1 Type:  -2 (PABX)\n"
                              " \n" +
                              STREAM_END);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.status, 0);
}

TEST(list, a_failure_prints_only_its_text) {
    const scripted_daemon daemon(replying({0, 0, 4, 5, 'b', 'u', 's', 'y'}));
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1"});
    EXPECT_EQ(got.errors, connected_to(daemon) + " busy\n");
    EXPECT_EQ(got.status, 1);
}

}  // namespace
}  // namespace ifwatch::test
