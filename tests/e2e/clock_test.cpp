// The times shown are the router's: its clock may jump, and this machine's is never read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

using octet_list = std::vector<std::uint8_t>;

octet_list record_at(std::uint32_t milliseconds, std::uint8_t sequence) {
    octet_list record = trace_record(sequence, octet_list(14, 0xA1));
    store_be32(&record[4], milliseconds);
    return record;
}

/// A router whose clock jumps on to its last millisecond, wraps, runs, and jumps back.
void serve_jumping_clock(const tcp_peer& client) {
    client.receive(TRACE_REQUEST_OCTETS);
    client.send({CHANNEL_TYPE_LAN});
    std::uint8_t sequence = 0;
    for (const std::uint32_t time : std::to_array<std::uint32_t>({1000, 4294967295, 0, 2500, 2000, 1000})) {
        client.send(record_at(time, ++sequence));
    }
}

TEST(jumping_clock, shows_as_it_is) {
    const scripted_daemon daemon(serve_jumping_clock);
    const outcome got = trace(daemon, {"-V1", "-t", "-D", "127.0.0.1", "1000"});
    // The differences are taken modulo 2^32 ms, 4294967.296 s.
    EXPECT_EQ(got.output,
              "000001.000 X DATA[0014]            | 000.000+0.000\n\n"
              "4294967.295 X DATA[0014]            | 4294966.295+4294966.295\n\n"
              "000000.000 X DATA[0014]            | 4294966.296+0.001\n\n"
              "000002.500 X DATA[0014]            | 001.500+2.500\n\n"
              "000002.000 X DATA[0014]            | 001.000+4294966.796\n\n"
              "000001.000 X DATA[0014]            | 000.000+4294966.296\n\n");
    EXPECT_EQ(got.errors, connected_to(daemon) + report_of("6 (LAN)", "") + STREAM_END);
    EXPECT_EQ(got.status, 0);
}

TEST(jumping_clock, is_written_as_it_is) {
    const temp_directory directory;
    const std::string name = directory.file("out.pcap");
    const scripted_daemon daemon(serve_jumping_clock);
    EXPECT_EQ(trace(daemon, {"-V1", "--pcap-file", "--ofile=" + name, "127.0.0.1", "1000"}).status, 0);
    std::string expected = pcap_of(0);
    const struct {
        std::uint32_t seconds;
        std::uint32_t microseconds;
    } times[] = {{1, 0}, {4294967, 295000}, {0, 0}, {2, 500000}, {2, 0}, {1, 0}};
    for (const auto& time : times) {
        for (const std::uint32_t word : {time.seconds, time.microseconds, 14U, 14U}) {
            append_word(expected, word);
        }
        expected.append(14, '\xA1');
    }
    std::string written;
    ASSERT_TRUE(read_file(name, written));
    EXPECT_EQ(written, expected);
}

/// What the program takes from the system's libraries, without the versions of the symbols.
std::vector<std::string> functions_taken() {
    std::istringstream listed(run({.program = "nm", .arguments = {"-D", "-u", "-P", IFWATCH_PROGRAM}}).output);
    std::vector<std::string> names;
    for (std::string line; std::getline(listed, line);) {
        names.push_back(line.substr(0, line.find_first_of("@ ")));
    }
    return names;
}

TEST(clock_of_this_machine, is_not_read) {
#ifdef IFWATCH_ADDRESS_SANITIZER
    GTEST_SKIP() << "the address sanitizer brings all these functions along";
#endif
    const std::vector<std::string> taken = functions_taken();
    ASSERT_THAT(taken, Contains("socket"));
    for (const char* const name : {"time", "gettimeofday", "clock", "clock_gettime", "ftime", "timespec_get", "times",
                                   "localtime", "localtime_r", "gmtime", "gmtime_r", "timerfd_create", "alarm"}) {
        EXPECT_THAT(taken, Not(Contains(name)));
    }
    EXPECT_THAT(taken, Not(Contains(HasSubstr("chrono"))));
}

}  // namespace
}  // namespace ifwatch::test
