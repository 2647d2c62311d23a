// What the PCAP sink writes, in the words of two programs that read such files.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

// An ARP request, and the first 42 octets of an ICMP echo request that had 98.
const std::string LAN =
    "channel 6\n"
    "record R 1004\n"
    "  FF*6 02 00 00 00 00 01 08 06\n"
    "  00 01 08 00 06 04 00 01 02 00 00 00 00 01 C0 00 02 01 00*6 C0 00 02 02\n"
    "record X 61250 original=98\n"
    "  02 00 00 00 00 01 02 00 00 00 00 02 08 00\n"
    "  45 00 00 54 00 01 00 00 40 01 F6 A6 C0 00 02 02 C0 00 02 01 08 00 F7 FD 00 02 00 00\n";

// An LCP configure-request without options.
const std::string PPP =
    "channel 1\n"
    "record X 500\n"
    "  FF 03 C0 21 01 01 00 04\n";

/// What a reader prints of the PCAP file that a trace of the case leaves. The name of the file goes behind `arguments`.
std::string read_with(const std::string& reader, std::vector<std::string> arguments, const std::string& text) {
    const simulator sim({text});
    const temp_directory directory;
    const std::string file = directory.file("trace.pcap");
    const outcome trace = sim.watch({"--pcap-file", "--ofile=" + file});
    EXPECT_EQ(trace.status, 0) << trace.errors;
    arguments.push_back(file);
    const outcome reading = run({.program = reader, .arguments = arguments, .timeout = std::chrono::seconds(60)});
    EXPECT_EQ(reading.status, 0) << reading.errors;
    return reading.output;
}

std::string fields_of(const std::string& text) {
    return read_with("tshark",
                     {"-n", "-T", "fields", "-e", "frame.time_epoch", "-e", "frame.cap_len", "-e", "frame.len", "-e",
                      "frame.protocols", "-r"},
                     text);
}

TEST(pcap_readers, tshark_reads_a_lan) {
    EXPECT_EQ(fields_of(LAN),
              "1.004000000\t42\t42\teth:ethertype:arp\n"
              "61.250000000\t42\t98\teth:ethertype:ip:icmp\n");
}

TEST(pcap_readers, tshark_reads_a_b_channel) { EXPECT_EQ(fields_of(PPP), "0.500000000\t8\t8\tppp:lcp\n"); }

TEST(pcap_readers, tcpdump_reads_a_lan) {
    EXPECT_EQ(read_with("tcpdump", {"-nn", "-tt", "-r"}, LAN),
              "1.004000 ARP, Request who-has 192.0.2.2 tell 192.0.2.1, length 28\n"
              "61.250000 IP 192.0.2.2 > 192.0.2.1: ICMP echo request, id 2, seq 0, length 64\n");
}

}  // namespace
}  // namespace ifwatch::test
