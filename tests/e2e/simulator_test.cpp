#include "support/simulator.h"
#include "support/programs.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/byte_order.h"
#include "support/tcp_peer.h"
#include "trace/element.h"

namespace ifwatch::test {
namespace {

using clock = std::chrono::steady_clock;
using octet_vector = std::vector<std::uint8_t>;

constexpr char THREE_FRAMES[] =
    "channel 0\n"
    "record R 1000\n 00 01 7F\n"
    "record X 1200\n 00 01 73\n"
    "record R 1300\n 00 01 53 AA BB\n";
constexpr char LAN_LIST_ENTRY[] = "channel 6\ninterface 2000\n";

std::size_t count_of(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

#define EXPECT_HOLDS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

/// The trace request of a version-1 client for interface 1000.
void ask_version_1(const tcp_peer& peer) {
    peer.send({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
}

/// One record as it came over the wire.
struct wire_record {
    std::uint16_t length;
    std::uint16_t protocol_length;
    std::uint32_t timestamp_ms;
    std::uint32_t flags;
    std::uint32_t info;
    std::uint32_t sequence;
    std::uint16_t original_length;
    octet_vector data;
};

/// The acknowledge octet and the records that a version-1 client gets.
std::vector<wire_record> records_over_version_1(int port) {
    const tcp_client client(port);
    ask_version_1(client);
    octet_vector stream = client.receive_all();
    std::vector<wire_record> records;
    for (std::size_t at = 1; at + 22 <= stream.size();) {
        const std::uint8_t* header = &stream[at];
        wire_record record = {
            load_be16(header),      load_be16(header + 2),  load_be32(header + 4),  load_be32(header + 8),
            load_be32(header + 12), load_be32(header + 16), load_be16(header + 20), {}};
        const std::size_t end = std::min(stream.size(), at + std::max<std::size_t>(record.length, 22));
        record.data.assign(stream.begin() + static_cast<std::ptrdiff_t>(at + 22),
                           stream.begin() + static_cast<std::ptrdiff_t>(end));
        at = end;
        records.push_back(record);
    }
    return records;
}

TEST(simulator, serves_a_trace_in_each_version) {
    const simulator sim({THREE_FRAMES});
    const std::string expected = sim.watch({"-2"}).output;
    EXPECT_EQ(count_of(expected, "DATA["), 3U) << expected;
    EXPECT_HOLDS(expected, "000001.200 X #00000002 DATA[0003]");
    for (const char* version : {"1", "2", "3"}) {
        const outcome watched = sim.watch({"-2", "-V", version});
        EXPECT_EQ(watched.status, 0) << watched.errors;
        EXPECT_EQ(watched.output, expected) << "version " << version;
        EXPECT_HOLDS(watched.errors, "Ifc:1000 (Chan:0 Unit:0 Slot:1) Type: 0 (ISDN D-channel)");
    }
}

TEST(simulator, writes_records_as_the_protocol_has_them) {
    const simulator sim(
        {"channel 169\nrecord X 0x01020304 sequence=0x05060708 flags=0x81 info=0x11223344 original=300\n"
         " 41 42 43\n"});
    const tcp_client client(sim.port());
    ask_version_1(client);
    EXPECT_EQ(client.receive_all(), (octet_vector{0xA9, 0,    25,   0,    16, 1, 2, 3, 4, 0,  0,    0,    0x81,
                                                  0x11, 0x22, 0x33, 0x44, 5,  6, 7, 8, 1, 44, 0x41, 0x42, 0x43}));
}

TEST(simulator, lists_its_interfaces_by_index) {
    const simulator sim({"channel 131\ninterface 100001\n", LAN_LIST_ENTRY, "channel -2\ninterface 0\n"});
    const outcome listed = sim.watch({}, {});
    const std::string list =
        "Ifc:       0 Type:  -2 (PABX)\n"
        "Ifc:    2000 Type:   6 (LAN)\n"
        "Ifc:  100001 Type: 131 (Tunnel)\n";
    EXPECT_EQ(listed.status, 0);
    EXPECT_HOLDS(listed.errors, list);
}

TEST(simulator, serves_each_case_under_its_index) {
    const simulator sim(
        {"channel 131\ninterface 100001\nrecord R 1\n 00\n", "channel 0\ninterface 212345\nrecord R 2\n 00\n"});
    EXPECT_HOLDS(sim.watch({}, {"100001"}).output, "000000.001");
    EXPECT_HOLDS(sim.watch({}, {"212345"}).output, "000000.002");
    EXPECT_HOLDS(sim.watch({}, {"45", "23", "210"}).output, "000000.002");
    const outcome missing = sim.watch({}, {"1000"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_HOLDS(missing.errors, " no interface 1000\n");
}

TEST(simulator, checks_the_password) {
    const simulator sim({THREE_FRAMES}, {"--password", "a longer secret"});
    EXPECT_EQ(sim.watch({"--pwd=a longer secret"}).status, 0);
    const outcome refused = sim.watch({"--pwd=a longer secreT"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_HOLDS(refused.errors, " wrong password\n");
    EXPECT_EQ(refused.output, "");
}

TEST(simulator, refuses_an_answer_to_another_challenge_version) {
    const simulator sim({THREE_FRAMES});
    const tcp_client client(sim.port());
    client.send({0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
    const octet_vector greeting = client.receive(18);
    ASSERT_EQ(greeting.size(), 18U);
    EXPECT_EQ(octet_vector(greeting.begin(), greeting.begin() + 10), (octet_vector{0, 0, 1, 2, 3, 0, 0, 9, 10, 3}));
    client.send_element(ELEMENT_AUTH, "123456789");
    const octet_vector answer = client.receive_all();
    EXPECT_EQ(std::string(answer.begin() + 4, answer.end()), "wrong password");
}

TEST(simulator, challenges_differ) {
    const simulator sim({THREE_FRAMES});
    const auto challenge = [&sim] {
        const tcp_client client(sim.port());
        client.send({0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
        return client.receive(18);
    };
    EXPECT_NE(challenge(), challenge());
}

TEST(simulator, captures_as_much_as_asked) {
    const simulator sim({THREE_FRAMES});
    const outcome watched = sim.watch({"-h", "-r", "4"});
    EXPECT_HOLDS(watched.output, "DATA[0005]");  // the original length stays
    EXPECT_HOLDS(watched.output, "0000: 00 01 53 aa   ");
    EXPECT_EQ(count_of(sim.watch({"-h", "-r", "-5"}).output, "bb"), 1U);
}

TEST(simulator, applies_filters) {
    const std::string ethernet = " 000102030405 0A0B0C0D0E0F 0800 4500 0018 0001 0000 40";
    const simulator sim({"channel 6\nrecord R 1\n" + ethernet + "06 0000 01010102 01010103 0050 0051\nrecord R 2\n" +
                         ethernet +
                         "11 0000 01010103 01010102 0035 0035\nrecord R 3\n FFFFFFFFFFFF 0A0B0C0D0E0F 0026 424203\n"});
    const auto shown = [&sim](const std::vector<std::string>& options) {
        const std::string output = sim.watch(options).output;
        return std::string(output.find("00.001") != output.npos ? "1" : "") +
               (output.find("00.002") != output.npos ? "2" : "") + (output.find("00.003") != output.npos ? "3" : "");
    };
    EXPECT_EQ(shown({"-h"}), "123");
    EXPECT_EQ(shown({"-h", "-I", "::6"}), "1");
    EXPECT_EQ(shown({"-h", "-I", "!::6"}), "23");
    EXPECT_EQ(shown({"-h", "-I", "::6", "-o", "-I", "::17"}), "12");
    EXPECT_EQ(shown({"-h", "-B", "1.1.1.2:1.1.1.3"}), "12");
    EXPECT_EQ(shown({"-h", "-B", "1.1.1.2:1.1.1.3", "-I", "::17"}), "2");
    EXPECT_EQ(shown({"-h", "--llc"}), "3");
    EXPECT_EQ(shown({"-h", "--dst=00:01:02:03:04:05"}), "12");
    EXPECT_EQ(shown({"-h", "--src=00:01:02:03:04:05"}), "");
    EXPECT_EQ(shown({"-h", "--src=0a0b0c0d0e0f", "--src=!00:01:02:03:04:05"}), "123");
    EXPECT_EQ(shown({"-h", "--dst=ff:ff:ff:ff:ff:ff", "-o", "-B", "1.1.1.2:1.1.1.3:6:81:80"}), "3");
    EXPECT_EQ(shown({"-h", "-o", "--dst=!00:01:02:03:04:05", "-o", "-B", "1.1.1.3:1.1.1.2:6:81:80"}), "13");
    EXPECT_EQ(shown({"-h", "-V2", "-I", "::6"}), "1") << "version 2 carries filters, too";
    EXPECT_EQ(shown({"-h", "-V1", "-I", "::6"}), "123") << "version 1 does not";
    const outcome refused = sim.watch({"-I", "::tcp"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_HOLDS(refused.errors, " bad filter -I '::tcp'\n");
}

TEST(simulator, selects_the_atm_connection) {
    const simulator sim({"channel 3\nrecord R 1 info=0x08002300\n 45\nrecord R 2 info=0x08002400\n 45\n"});
    const std::string both = sim.watch({"-h"}).output;
    EXPECT_EQ(count_of(both, "DATA["), 2U) << both;
    const std::string one = sim.watch({"-h", "--vpi=8", "--vci=35", "-z"}).output;
    EXPECT_EQ(count_of(one, "DATA["), 1U) << one;
    EXPECT_HOLDS(one, "000000.001");
}

TEST(simulator, a_daemon_of_another_version_names_its_own) {
    for (const char* version : {"1", "2"}) {
        const simulator sim({THREE_FRAMES}, {"--version", version});
        const outcome watched = sim.watch({"-2", "-v"});
        EXPECT_EQ(watched.status, 0) << watched.errors;
        EXPECT_EQ(count_of(watched.errors, "connected to"), 2U) << watched.errors;
        EXPECT_EQ(count_of(watched.output, "DATA["), 3U) << watched.output;
    }
}

TEST(simulator, a_version_2_client_is_told_version_3) {
    const simulator sim({THREE_FRAMES}, {"--version", "3"});
    const outcome watched = sim.watch({"-2", "-V2", "-v"});
    EXPECT_EQ(watched.status, 0) << watched.errors;
    EXPECT_HOLDS(watched.errors, "got RVERSION 3\n");
}

TEST(simulator, an_old_daemon_closes_at_once) {
    const simulator sim({THREE_FRAMES}, {"--version", "1", "--refuse", "close"});
    const outcome watched = sim.watch({"-2"});
    EXPECT_EQ(watched.status, 0) << watched.errors;
    EXPECT_HOLDS(watched.errors, "missing elem header data");
    EXPECT_EQ(count_of(watched.output, "DATA["), 3U) << watched.output;
}

TEST(simulator, an_old_daemon_answers_the_channel_test) {
    const std::vector<std::string> cases = {"channel 0\ninterface 2000\n", "channel 1\ninterface 2001\n",
                                            "channel 1\ninterface 2002\n", "channel 6\ninterface 1000\n"};
    const std::string heading = "Testing available trace channels:\nChMax Unit Slot ChType\n";
    const simulator first({cases}, {"--version", "1", "--refuse", "serve"});
    EXPECT_EQ(first.watch({"-V1"}, {}).output, heading + "    0    0    1  -  6\n    2    0    2  -  1\n");
    const simulator second({cases}, {"--version", "2", "--refuse", "serve"});
    EXPECT_EQ(second.watch({"-V2"}, {}).output, heading + "    0    0    1  -  0\n    2    0    2  -  0\n")
        << "the first octet of an element";
}

TEST(simulator, sends_an_error_element) {
    const simulator sim({THREE_FRAMES}, {"--error", "trace is locked"});
    const outcome watched = sim.watch({});
    EXPECT_EQ(watched.status, 1);
    EXPECT_HOLDS(watched.errors, " trace is locked\n");
}

TEST(simulator, closes_behind_every_step) {
    for (const char* step : {"connect", "request", "version", "challenge", "login", "addinfo", "chantype"}) {
        // Told nothing, the client tries version 1; that is closed, too.
        const simulator sim({THREE_FRAMES}, {"--close-after", step, "--version", "3", "--refuse", "close"});
        const outcome watched = sim.watch({});
        EXPECT_EQ(watched.status, 1) << step;
        EXPECT_EQ(watched.output, "") << step;
    }
    const simulator sim({THREE_FRAMES}, {"--close-after", "reply"});
    const outcome watched = sim.watch({});
    EXPECT_EQ(watched.status, 0) << watched.errors;
    EXPECT_HOLDS(watched.errors, "trc hdr too short! = 0<22\n");
}

TEST(simulator, cuts_inside_a_record) {
    const simulator sim({THREE_FRAMES}, {"--fault", "cut=2"});
    const outcome watched = sim.watch({"-2"});
    EXPECT_EQ(count_of(watched.output, "DATA["), 1U) << watched.output;
    EXPECT_HOLDS(watched.errors, "trc hdr too short!");
    const tcp_client client(sim.port());
    ask_version_1(client);
    EXPECT_EQ(client.receive_all().size(), 1U + 25 + 12);
}

TEST(simulator, drips) {
    const simulator whole({THREE_FRAMES});
    const simulator dripping({THREE_FRAMES}, {"--fault", "drip"});
    EXPECT_EQ(dripping.watch({"-2", "-h"}).output, whole.watch({"-2", "-h"}).output);
    const auto begin = clock::now();
    const tcp_client client(dripping.port());
    ask_version_1(client);
    EXPECT_EQ(client.receive(51).size(), 51U);
    // How many octets a read finds depends on who runs first, but not how long all of them take.
    EXPECT_GE(clock::now() - begin, 50 * std::chrono::microseconds(200));
}

TEST(simulator, falls_silent) {
    simulator sim({THREE_FRAMES}, {"--fault", "silence=2"});
    const tcp_client client(sim.port());
    ask_version_1(client);
    EXPECT_EQ(client.receive(1 + 25 + 25).size(), 51U);
    EXPECT_TRUE(client.silent_for(100));
    const outcome ended = sim.program().terminate();
    EXPECT_EQ(ended.status, 0) << "an open session does not hold it up";
    EXPECT_TRUE(client.receive(1).empty());
}

TEST(simulator, tells_wrong_lengths) {
    const simulator short_record({THREE_FRAMES}, {"--fault", "length=record:2:21"});
    EXPECT_EQ(records_over_version_1(short_record.port()).at(1).length, 21);
    EXPECT_HOLDS(short_record.watch({"-2"}).errors, "data too short!");
    const simulator long_element({THREE_FRAMES}, {"--fault", "length=element:1:100"});
    EXPECT_HOLDS(long_element.watch({"-2"}).errors, "read buffer overflow");
}

TEST(simulator, loops_with_time_and_sequence_going_on) {
    const simulator sim({THREE_FRAMES}, {"--loop", "3"});
    const std::vector<wire_record> records = records_over_version_1(sim.port());
    ASSERT_EQ(records.size(), 9U);
    const std::uint32_t times[] = {1000, 1200, 1300, 1450, 1650, 1750, 1900, 2100, 2200};
    for (std::uint32_t i = 0; i < 9; ++i) {
        EXPECT_EQ(records[i].sequence, i + 1);
        EXPECT_EQ(records[i].timestamp_ms, times[i]);
        EXPECT_EQ(records[i].data.size(), i % 3 == 2 ? 5U : 3U);
    }
}

TEST(simulator, keeps_the_pace_of_the_time_stamps) {
    const simulator sim({THREE_FRAMES}, {"--pace", "real"});
    const auto start = clock::now();
    EXPECT_EQ(records_over_version_1(sim.port()).size(), 3U);
    const auto took = clock::now() - start;
    EXPECT_GE(took, std::chrono::milliseconds(300));
    EXPECT_LT(took, std::chrono::seconds(5));
    const simulator faster({THREE_FRAMES}, {"--pace", "0.5"});
    const auto half = clock::now();
    EXPECT_EQ(records_over_version_1(faster.port()).size(), 3U);
    EXPECT_GE(clock::now() - half, std::chrono::milliseconds(600)) << "half as fast";
}

TEST(simulator, keeps_a_record_rate) {
    const simulator sim({THREE_FRAMES}, {"--rate", "20", "--loop", "2"});
    const auto start = clock::now();
    EXPECT_EQ(records_over_version_1(sim.port()).size(), 6U);
    EXPECT_GE(clock::now() - start, std::chrono::milliseconds(250));
}

TEST(simulator, an_endless_loop_ends_with_its_client) {
    simulator sim({THREE_FRAMES}, {"--loop", "0", "--once", "--verbose"});
    {
        const tcp_client client(sim.port());
        ask_version_1(client);
        EXPECT_EQ(client.receive(100'000).size(), 100'000U);
    }
    const outcome ended = sim.program().wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(ended.errors.starts_with("client 1: version 1, trace of interface 1000 ended, ")) << ended.errors;
}

TEST(simulator, ends_after_the_sessions_asked_for) {
    simulator sim({THREE_FRAMES}, {"--sessions", "2", "-v"});
    EXPECT_EQ(sim.watch({}, {}).status, 0) << "a list is no trace session";
    EXPECT_EQ(sim.watch({"--pwd=wrong"}).status, 1);
    EXPECT_EQ(sim.watch({}).status, 0);
    EXPECT_EQ(sim.watch({}).status, 0);
    const outcome ended = sim.program().wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors,
              "client 1: version 3, interfaces listed\n"
              "client 2: version 3, error sent: wrong password\n"
              "client 3: version 3, trace of interface 1000 ended, 3 records\n"
              "client 4: version 3, trace of interface 1000 ended, 3 records\n");
}

TEST(simulator, ends_on_signals) {
    for (const int signal : {SIGTERM, SIGINT}) {
        simulator sim({THREE_FRAMES});
        sim.program().send_signal(signal);
        const outcome ended = sim.program().wait();
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.signal, 0);
    }
}

TEST(simulator, serves_clients_at_the_same_time) {
    const simulator sim({THREE_FRAMES}, {"--pace", "real"});
    const tcp_client idle(sim.port());
    const auto start = clock::now();
    std::vector<std::thread> watchers;
    std::vector<std::size_t> counts(5);
    watchers.reserve(counts.size());
    for (std::size_t& count : counts) {
        watchers.emplace_back([&sim, &count] { count = records_over_version_1(sim.port()).size(); });
    }
    for (std::thread& watcher : watchers) {
        watcher.join();
    }
    EXPECT_EQ(counts, std::vector<std::size_t>(5, 3));
    EXPECT_LT(clock::now() - start, std::chrono::milliseconds(1500)) << "five times 300 ms one after another";
}

TEST(simulator, survives_what_no_client_sends) {
    simulator sim({THREE_FRAMES});
    const octet_vector request = {0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    const std::vector<octet_vector> junk = {
        {}, {0}, {1, 2, 3, 4, 5}, {0xFF, 0xFF, 0xFF, 6}, {0xFF, 0xFF, 0xFE, 6}, {0, 0, 0, 99}, {0, 0, 9, 7, 1}};
    for (const octet_vector& more : junk) {
        const tcp_client client(sim.port());
        client.send(request);
        client.send(more);
        shutdown(client.socket(), SHUT_WR);
        client.receive_all();
    }
    EXPECT_EQ(records_over_version_1(sim.port()).size(), 3U);
    EXPECT_EQ(sim.program().terminate().status, 0);
}

TEST(simulator, writes_its_port_into_a_file) {
    const temp_directory directory;
    const simulator sim({THREE_FRAMES}, {"--port-file", directory.file("port")});
    std::string text;
    ASSERT_TRUE(read_file(directory.file("port"), text));
    EXPECT_EQ(text, std::to_string(sim.port()) + "\n");
}

}  // namespace
}  // namespace ifwatch::test
