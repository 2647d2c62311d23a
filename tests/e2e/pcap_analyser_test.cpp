// Real analysers, tcpdump and tshark, on what the sinks hold: files, pipes while they are written, and as the program
// that the run itself starts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/simulator.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

using octet_list = std::vector<std::uint8_t>;

// An analyser takes its time to start on a busy machine.
constexpr auto PATIENCE = 60s;

// 192.0.2.2 asks for 192.0.2.1.
const octet_list ARP_REQUEST = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2, 0,    0, 0, 0, 2, 8, 6, 0, 1, 8, 0,    6, 4, 0,
                                1,    2,    0,    0,    0,    0,    2, 0xC0, 0, 2, 2, 0, 0, 0, 0, 0, 0, 0xC0, 0, 2, 1};
// 192.0.2.1 sends an echo request to 192.0.2.2.
const octet_list IP_DATAGRAM = {0x45, 0, 0,    28, 0, 1, 0, 0, 64,   1,    0xF6, 0xDE, 0xC0, 0,
                                2,    1, 0xC0, 0,  2, 2, 8, 0, 0xF7, 0xFD, 0,    2,    0,    0};

constexpr const char* LAN_CASE =
    "channel 6\n"
    "record X 1004\n"
    "  FF*6 02 00 00 00 00 02 08 06\n"
    "  00 01 08 00 06 04 00 01 02 00 00 00 00 02 C0 00 02 02 00*6 C0 00 02 01\n"
    "record R 61250\n"
    "  02 00 00 00 00 02 02 00 00 00 00 01 08 00\n"
    "  45 00 00 1C 00 01 00 00 40 01 F6 DE C0 00 02 01 C0 00 02 02 08 00 F7 FD 00 02 00 00\n";

constexpr const char* TCPDUMP_OF_LAN =
    "1.004000 ARP, Request who-has 192.0.2.1 tell 192.0.2.2, length 28\n"
    "61.250000 IP 192.0.2.1 > 192.0.2.2: ICMP echo request, id 2, seq 0, length 8\n";
constexpr const char* TSHARK_OF_LAN =
    "1.004000000\t42\t42\teth:ethertype:arp\n"
    "61.250000000\t42\t42\teth:ethertype:ip:icmp\n";

outcome tcpdump(const std::string& file) {
    return run({.program = "tcpdump", .arguments = {"-nn", "-tt", "-r", file}, .timeout = PATIENCE});
}

/// Time, captured and original length, and protocols of each frame.
const std::vector<std::string> TSHARK_FIELDS = {
    "-n", "-T", "fields", "-e", "frame.time_epoch", "-e", "frame.cap_len", "-e", "frame.len", "-e", "frame.protocols"};

command tshark(const std::vector<std::string>& source) {
    command what = {.program = "tshark", .arguments = TSHARK_FIELDS, .timeout = PATIENCE};
    what.arguments.insert(what.arguments.end(), source.begin(), source.end());
    return what;
}

class pcap_analyser : public testing::Test {
protected:
    temp_directory directory;
    std::string name = directory.file("out.pcap");
    std::string option = "--ofile=" + name;

    /// Traces a case into the file.
    void trace(const std::string& text, std::vector<std::string> options = {}) {
        const simulator sim({text});
        options.insert(options.end(), {"--pcap-file", option});
        const outcome got = sim.watch(options);
        ASSERT_EQ(got.status, 0) << got.errors;
    }
};

TEST_F(pcap_analyser, tcpdump_reads_the_file) {
    trace(LAN_CASE);
    const outcome read = tcpdump(name);
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.output, TCPDUMP_OF_LAN);
    EXPECT_THAT(read.errors, HasSubstr("link-type EN10MB (Ethernet), snapshot length 65535\n"));
}

TEST_F(pcap_analyser, tshark_reads_the_file) {
    trace(LAN_CASE);
    const outcome read = run(tshark({"-r", name}));
    EXPECT_EQ(read.status, 0) << read.errors;
    EXPECT_EQ(read.output, TSHARK_OF_LAN);
}

TEST_F(pcap_analyser, tshark_sees_that_frames_were_cut) {
    trace(LAN_CASE, {"-r20"});
    EXPECT_EQ(run(tshark({"-r", name})).output,
              "1.004000000\t20\t42\teth:ethertype:arp\n61.250000000\t20\t42\teth:ethertype:ip\n");
}

TEST_F(pcap_analyser, tcpdump_reads_the_datagrams_of_a_tunnel) {
    trace(
        "channel 131\nrecord X 1500\n  FF FF\n"
        "  45 00 00 1C 00 01 00 00 40 01 F6 DE C0 00 02 01 C0 00 02 02 08 00 F7 FD 00 02 00 00\n");
    EXPECT_EQ(tcpdump(name).output, "1.500000 IP 192.0.2.1 > 192.0.2.2: ICMP echo request, id 2, seq 0, length 8\n");
}

TEST_F(pcap_analyser, tshark_reads_a_b_channel_as_ppp) {
    trace("channel 1\nrecord X 500\n  FF 03 C0 21 01 01 00 04\n");
    EXPECT_EQ(run(tshark({"-r", name})).output, "0.500000000\t8\t8\tppp:lcp\n");
}

struct link_type {
    int channel_type;
    const char* name;  // as tcpdump has it
};

void PrintTo(const link_type& row, std::ostream* out) { *out << row.channel_type; }

class pcap_link_type : public pcap_analyser, public testing::WithParamInterface<link_type> {};

TEST_P(pcap_link_type, is_the_one_of_the_interface) {
    trace("channel " + std::to_string(GetParam().channel_type) + "\n");
    const outcome read = tcpdump(name);
    EXPECT_EQ(read.status, 0);
    EXPECT_THAT(read.errors, HasSubstr("link-type " + std::string(GetParam().name) + " "));
}

INSTANTIATE_TEST_SUITE_P(interfaces, pcap_link_type,
                         testing::Values(link_type{-2, "NULL"}, link_type{0, "NULL"}, link_type{1, "PPP"},
                                         link_type{2, "ATM_RFC1483"}, link_type{3, "ATM_RFC1483"},
                                         link_type{4, "EN10MB"}, link_type{5, "RAW"}, link_type{6, "EN10MB"},
                                         link_type{7, "EN10MB"}, link_type{8, "IEEE802"}, link_type{9, "IEEE802"},
                                         link_type{32, "FRELAY"}, link_type{23, "PPP"}, link_type{16, "PPP_SERIAL"},
                                         link_type{118, "C_HDLC"}, link_type{169, "NULL"}, link_type{94, "NULL"},
                                         link_type{131, "RAW"}, link_type{200, "EN10MB"}));

/// An Ethernet frame with the datagram in it.
octet_list ip_frame() {
    octet_list frame = {2, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 1, 8, 0};
    frame.insert(frame.end(), IP_DATAGRAM.begin(), IP_DATAGRAM.end());
    return frame;
}

class live_pipe : public pcap_analyser {
protected:
    /// Traces into the pipe while the reader is at it: the second frame is sent when the reader has shown the first.
    void trace_while_read_by(const command& reader, const std::string& first, const std::string& second) {
        std::promise<void> first_shown;
        const scripted_daemon daemon([&first_shown](const tcp_peer& client) {
            client.receive(TRACE_REQUEST_OCTETS);
            client.send({CHANNEL_TYPE_LAN});
            client.send(trace_record(1, ARP_REQUEST));
            first_shown.get_future().wait_for(PATIENCE);
            client.send(trace_record(2, ip_frame()));
        });
        process tracer({.program = IFWATCH_PROGRAM,
                        .arguments = {"-V1", daemon.port_option(), "--pcap-pipe", option, "127.0.0.1", "1000"},
                        .timeout = PATIENCE});
        ASSERT_TRUE(tracer.wait_for_errors("start now e.g.: "));
        process analyser(reader);
        EXPECT_TRUE(analyser.wait_for_output(first)) << analyser.errors();
        EXPECT_EQ(analyser.output(), first);
        first_shown.set_value();
        EXPECT_EQ(tracer.wait().status, 0);
        const outcome read = analyser.wait();
        EXPECT_EQ(read.status, 0) << read.errors;
        EXPECT_EQ(read.output, first + second);
    }
};

TEST_F(live_pipe, tcpdump_shows_each_frame_as_it_comes) {
    trace_while_read_by({.program = "tcpdump", .arguments = {"-nn", "-tt", "-l", "-r", name}, .timeout = PATIENCE},
                        "1.000000 ARP, Request who-has 192.0.2.1 tell 192.0.2.2, length 28\n",
                        "2.000000 IP 192.0.2.1 > 192.0.2.2: ICMP echo request, id 2, seq 0, length 8\n");
}

TEST_F(live_pipe, tshark_shows_each_frame_as_it_comes) {
    trace_while_read_by(tshark({"-l", "-i", name}), "1.000000000\t42\t42\teth:ethertype:arp\n",
                        "2.000000000\t42\t42\teth:ethertype:ip:icmp\n");
}

/// Waits for a file that another process makes complete at once.
std::string text_of_file(const std::string& path) {
    std::string text;
    const auto until = std::chrono::steady_clock::now() + PATIENCE;
    while (!read_file(path, text) && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(10ms);
    }
    return text;
}

TEST_F(live_pipe, tshark_is_started_on_it) {
    const std::string wrapper = directory.write("analyser", R"(#!/bin/sh
here=${0%/*}
tshark "$@" > "$here/part" && mv "$here/part" "$here/shown"
)");
    ASSERT_EQ(chmod(wrapper.c_str(), 0700), 0);
    std::string arguments = wrapper;
    std::string listing = "exec_cmd: args 0: " + wrapper + "\n";
    int count = 1;
    for (const std::string& field : TSHARK_FIELDS) {
        arguments += " " + field;
        listing += "exec_cmd: args " + std::to_string(count++) + ": " + field + "\n";
    }
    listing += "exec_cmd: args " + std::to_string(count) + ": -i\nexec_cmd: args " + std::to_string(count + 1) + ": " +
               name + "\nexec_cmd: args " + std::to_string(count + 2) + ": (null)\nstarted pid ";
    const simulator sim({LAN_CASE});
    const outcome got = run({.program = IFWATCH_PROGRAM,
                             .arguments = {"-vvv", "--pwd=admin", "-P" + std::to_string(sim.port()), "--ethereal",
                                           option, "127.0.0.1", "1000"},
                             .environment = {{"TRACE_EXEC", arguments + " -i"}},
                             .timeout = PATIENCE});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, HasSubstr("created pipe: " + name + "\nstart prog $TRACE_EXEC\nstarting: " + arguments +
                                      " -i " + name + "\n" + listing));
    EXPECT_EQ(text_of_file(directory.file("shown")), TSHARK_OF_LAN);
}

}  // namespace
}  // namespace ifwatch::test
