// A daemon whose reply is out of the ordinary: every element at every wrong length, versions without end, elements
// without end, very many interfaces.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "support/process.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "trace/element.h"

namespace ifwatch::test {
namespace {

using octet_list = std::vector<std::uint8_t>;

constexpr std::uint32_t OPEN_LENGTH = 0xFFFFFF;
constexpr std::size_t LONGEST = 99;  // octets that an element may have

void append_element(octet_list& octets, std::uint8_t type, std::uint32_t length) {
    octets.resize(octets.size() + 4);
    store_be32(&octets[octets.size() - 4], element_header(type, length));
    octets.resize(octets.size() + (length == OPEN_LENGTH ? 0 : length), 'e');
}

/// An element of so many octets, each of them 'e'. Nothing follows an open length.
octet_list element(std::uint8_t type, std::uint32_t length) {
    octet_list octets;
    append_element(octets, type, length);
    return octets;
}

enum class ending { STANDS, GIVEN_UP, TRIED_AGAIN };

struct length_case {
    const char* name;
    std::uint8_t type;
    std::uint32_t length;
    const char* message;  // before the report line
    std::string text;     // of the report line
    ending end;
};

void PrintTo(const length_case& test, std::ostream* out) { *out << test.name << "_" << test.length; }

class element_length : public testing::TestWithParam<length_case> {};

TEST_P(element_length, of_the_reply) {
    const length_case& row = GetParam();
    octet_list reply = element(row.type, row.length);
    append_element(reply, 0, 0);
    const scripted_daemon daemon({replying(reply), [](const tcp_peer& client) {
                                      client.receive(TRACE_REQUEST_OCTETS);
                                      client.send({CHANNEL_TYPE_LAN});
                                  }});
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    std::string errors = connected_to(daemon) + row.message + report_of(NO_TYPE, row.text);
    if (row.end == ending::TRIED_AGAIN) {
        errors += connected_to(daemon) + report_of("6 (LAN)", "");
    }
    EXPECT_EQ(got.errors, errors + (row.end == ending::GIVEN_UP ? "" : STREAM_END));
    EXPECT_EQ(got.status, row.end == ending::GIVEN_UP ? 1 : 0);
}

constexpr const char* OVERFLOW_TEXT = "read buffer overflow";
constexpr const char* WRONG = "received wrong ELEM";

INSTANTIATE_TEST_SUITE_P(
    every, element_length,
    testing::Values(
        length_case{"end", 0, 1, "", "", ending::STANDS}, length_case{"end", 0, LONGEST, "", "", ending::STANDS},
        length_case{"end", 0, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"end", 0, OPEN_LENGTH, "", "", ending::STANDS},
        length_case{"channel_type", 1, 0, "wrong CHANTYPE len 0\n", "", ending::STANDS},
        length_case{"channel_type", 1, 3, "wrong CHANTYPE len 3\n", "", ending::STANDS},
        length_case{"channel_type", 1, LONGEST, "wrong CHANTYPE len 99\n", "", ending::STANDS},
        length_case{"channel_type", 1, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"channel_type", 1, OPEN_LENGTH, "wrong CHANTYPE len 16777215\n", "", ending::STANDS},
        length_case{"version", 2, 0, "", "", ending::STANDS}, length_case{"version", 2, 2, "", "", ending::STANDS},
        length_case{"version", 2, LONGEST, "", "", ending::STANDS},
        length_case{"version", 2, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"version", 2, OPEN_LENGTH, "", "", ending::STANDS},
        length_case{"start", 3, LONGEST, "received elem 00006303\n", WRONG, ending::GIVEN_UP},
        length_case{"start", 3, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"ignored", 4, 0, "", "", ending::STANDS},
        length_case{"ignored", 4, LONGEST, "", "", ending::STANDS},
        length_case{"ignored", 4, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"ignored", 4, OPEN_LENGTH, "", "", ending::STANDS},
        length_case{"error", 5, 1, "", "e", ending::GIVEN_UP},
        length_case{"error", 5, LONGEST, "", std::string(LONGEST, 'e'), ending::GIVEN_UP},
        length_case{"error", 5, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"challenge", 10, 9, "received elem 0000090a\n", WRONG, ending::GIVEN_UP},
        length_case{"interface", 11, 0, "wrong INFO elem len 0 != 8\n", "", ending::STANDS},
        length_case{"interface", 11, 7, "wrong INFO elem len 7 != 8\n", "", ending::STANDS},
        length_case{"interface", 11, 9, "wrong INFO elem len 9 != 8\n", "", ending::STANDS},
        length_case{"interface", 11, LONGEST, "wrong INFO elem len 99 != 8\n", "", ending::STANDS},
        length_case{"interface", 11, LONGEST + 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN},
        length_case{"interface", 11, OPEN_LENGTH, "wrong INFO elem len 16777215 != 8\n", "", ending::STANDS},
        length_case{"unknown", 255, LONGEST, "received elem 000063ff\n", WRONG, ending::GIVEN_UP},
        length_case{"unknown", 255, OPEN_LENGTH - 1, "", OVERFLOW_TEXT, ending::TRIED_AGAIN}),
    [](const auto& test) { return testing::PrintToString(test.param); });

/// A version-3 daemon that begins with these octets; to version 1 it says nothing.
outcome trace_behind(const octet_list& beginning, std::string& connected) {
    const scripted_daemon daemon([&beginning](const tcp_peer& client) {
        if (version_of(client.receive(TRACE_REQUEST_OCTETS)) == 3) {
            client.send(beginning);
        }
    });
    connected = connected_to(daemon);
    return trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
}

TEST(login_element_length, of_the_version) {
    const struct {
        std::uint32_t length;
        const char* text;
    } rows[] = {{0, "no RVERSION received"},
                {2, "no RVERSION received"},
                {LONGEST, "no RVERSION received"},
                {LONGEST + 1, OVERFLOW_TEXT},
                {OPEN_LENGTH, "no RVERSION received"}};
    for (const auto& row : rows) {
        std::string connected;
        const outcome got = trace_behind(element(2, row.length), connected);
        EXPECT_EQ(got.errors, connected + report_of(NO_TYPE, row.text) + connected +
                                  report_of(NO_TYPE, "negative trace acknowledge"));
        EXPECT_EQ(got.status, 1);
    }
}

/// What the client answers to a challenge of these octets.
octet_list answer_to(const octet_list& challenge) {
    octet_list answer;
    const scripted_daemon daemon(logging_in_to(answer, challenge));
    EXPECT_EQ(trace(daemon, {"--pwd=x", "127.0.0.1", "1000"}).status, 0);
    return answer;
}

TEST(login_element_length, of_the_challenge) {
    const octet_list usual = {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    octet_list challenge = usual;
    challenge.pop_back();
    // printf 'x\x01\x11\x22\x33\x44\x55\x66\x77xadmin' | md5sum
    EXPECT_EQ(answer_to(challenge), (octet_list{0, 0, 9, 10, 1, 0x2D, 0x6C, 0x5B, 0xCE, 0x3D, 0xE0, 0x7C, 0x51}));
    // printf 'x\x07xadmin' | md5sum
    EXPECT_EQ(answer_to({7}), (octet_list{0, 0, 9, 10, 7, 0xB5, 0x79, 0x83, 0x65, 0x29, 0x4B, 0x3A, 0x01}));
    // printf 'xxadmin' | md5sum
    EXPECT_EQ(answer_to({}), (octet_list{0, 0, 9, 10, 0, 0xDB, 0xA5, 0x26, 0x48, 0x34, 0x7F, 0xD2, 0xC1}));
    challenge = usual;
    challenge.push_back(0x99);
    // printf 'x\x01\x11\x22\x33\x44\x55\x66\x77\x88\x99xadmin' | md5sum
    EXPECT_EQ(answer_to(challenge), (octet_list{0, 0, 9, 10, 1, 0xA6, 0x1C, 0x38, 0x31, 0x99, 0x9A, 0xB5, 0x62}));
    challenge = usual;
    challenge.resize(LONGEST, 0xAA);
    // (printf 'x\x01\x11\x22\x33\x44\x55\x66\x77\x88'; head -c90 /dev/zero | tr '\0' '\252'; printf xadmin) | md5sum
    EXPECT_EQ(answer_to(challenge), (octet_list{0, 0, 9, 10, 1, 0x8F, 0x11, 0x87, 0xB6, 0x0A, 0xA5, 0xBA, 0x5A}));
    octet_list too_long = {0, 0, 1, 2, 3};
    append_element(too_long, 10, LONGEST + 1);
    std::string connected;
    const outcome got = trace_behind(too_long, connected);
    EXPECT_EQ(got.errors, connected + report_of(NO_TYPE, OVERFLOW_TEXT) + connected +
                              report_of(NO_TYPE, "negative trace acknowledge"));
    EXPECT_EQ(got.status, 1);
}

TEST(version_loop, ends_with_the_second_attempt) {
    const struct {
        std::uint8_t first;
        std::uint8_t second;
    } rows[] = {{3, 3}, {2, 2}, {2, 3}, {200, 3}, {255, 255}};
    for (const auto& row : rows) {
        std::vector<int> versions;
        const scripted_daemon daemon([&](const tcp_peer& client) {
            const octet_list request = client.receive(TRACE_REQUEST_OCTETS);
            versions.push_back(version_of(request));
            if (versions.back() > 2) {
                client.send_element(2, {3});
                client.send_element(10, {1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
                client.receive(AUTH_REPLY_LENGTH);
            }
            client.receive(PLAIN_ADDINFO_LENGTH);
            client.send_element(2, {versions.size() == 1 ? row.first : row.second});
        });
        const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1", "1000"});
        const std::string attempt = connected_to(daemon) + report_of(NO_TYPE, "missing elem header data");
        EXPECT_EQ(got.errors, attempt + attempt);
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(versions, (std::vector<int>{3, row.first}));
    }
}

TEST(version_loop, may_also_end_in_version_1) {
    std::vector<int> versions;
    const scripted_daemon daemon([&](const tcp_peer& client) {
        versions.push_back(version_of(client.receive(TRACE_REQUEST_OCTETS)));
        client.send_element(2, {1});
    });
    const outcome got = trace(daemon, {"-V2", "127.0.0.1", "1000"});
    EXPECT_EQ(versions, (std::vector<int>{2, 1}));
    // There the first octet of the element is the channel type, and the others are no record.
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "missing elem header data") + connected_to(daemon) +
                              report_of("0 (ISDN D-channel)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(list, of_ten_thousand_interfaces) {
    constexpr int COUNT = 10000;
    octet_list reply;
    std::string expected;
    for (int i = 1; i <= COUNT; ++i) {
        octet_list information = element(11, 8);
        store_be32(&information[4], static_cast<std::uint32_t>(i));
        store_be16(&information[8], 6);
        reply.insert(reply.end(), information.begin(), information.end());
        char line[64];
        std::snprintf(line, sizeof line, "Ifc: %7d Type:   6 (LAN)\n", i);
        expected += line;
    }
    append_element(reply, 0, 0);
    const scripted_daemon daemon(replying(reply));
    const outcome got = trace(daemon, {"--pwd=x", "127.0.0.1"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.errors, connected_to(daemon) + expected + " \n" + STREAM_END);
}

constexpr int ELEMENTS_MAXIMUM = 1000000;

/// A daemon that sends so many elements, and then the end element.
scripted_daemon::script sending_elements(int count, const octet_list& every) {
    return [count, every](const tcp_peer& client) {
        constexpr int BLOCK = 1000;
        log_in(client);
        octet_list block;
        for (int i = 0; i < BLOCK; ++i) {
            block.insert(block.end(), every.begin(), every.end());
        }
        for (int left = count; left > 0; left -= BLOCK) {
            client.send(std::span(block).first(every.size() * static_cast<std::size_t>(std::min(left, BLOCK))));
        }
        client.send_element(0);
    };
}

/// A million elements take their time, above all under the sanitizers on a machine that has other work.
outcome trace_patiently(const scripted_daemon& daemon) {
    command what = tracing(daemon, {"--pwd=x", "127.0.0.1", "1000"});
    what.timeout = std::chrono::minutes(2);
    return run(what);
}

TEST(endless_reply, is_given_up_also_when_it_asks_for_another_version) {
    std::atomic<int> connections = 0;
    const scripted_daemon daemon([&connections](const tcp_peer& client) {
        ++connections;
        sending_elements(ELEMENTS_MAXIMUM, element(2, 1))(client);
    });
    const outcome got = trace_patiently(daemon);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "too many elements"));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(connections, 1);
}

TEST(endless_reply, is_longer_than_the_longest) {
    const scripted_daemon daemon(sending_elements(ELEMENTS_MAXIMUM - 1, element(4, 0)));
    const outcome got = trace_patiently(daemon);
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of(NO_TYPE, "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

}  // namespace
}  // namespace ifwatch::test
