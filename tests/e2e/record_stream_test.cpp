// The record stream behind the session: every way it ends, what a record's header may say, and what is told about it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using octet_list = std::vector<std::uint8_t>;

constexpr const char* STREAM_END = "trc hdr too short! = 0<22\n";
constexpr const char* COUNTER_START = "Packets captured:        0";
constexpr const char* COUNTER_BACK = "\b\b\b\b\b\b\b\b";

// What the display shows of the records of `serving` and of trace_record.
constexpr const char* FIRST_SHOWN = "000001.000 X DATA[0014]   \n\n";
constexpr const char* SECOND_SHOWN = "000002.000 X DATA[0014]   \n\n";

octet_list fourteen_octets(std::uint8_t value) { return octet_list(14, value); }

octet_list operator+(octet_list first, const octet_list& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

octet_list first_octets(const octet_list& all, std::size_t n) {
    return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n)};
}

/// A record whose header tells another length than it has.
octet_list with_length(octet_list record, std::uint16_t length) {
    store_be16(record.data(), length);
    return record;
}

octet_list with_sequence(octet_list record, std::uint32_t sequence) {
    store_be32(&record[16], sequence);
    return record;
}

/// The daemon's side of a version-1 session on a LAN interface that sends these octets as its records.
scripted_daemon::script streaming(octet_list octets) {
    return [octets = std::move(octets)](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send({CHANNEL_TYPE_LAN});
        client.send(octets);
    };
}

/// A run that traces interface 1000 of a version-1 daemon, and decodes no layer unless the options tell more.
command tracing(const scripted_daemon& daemon, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"-V1", "-t", daemon.port_option()});
    options.insert(options.end(), {"127.0.0.1", "1000"});
    return {.program = IFWATCH_PROGRAM, .arguments = std::move(options)};
}

std::string session_report(const scripted_daemon& daemon) {
    return "ifwatch: connected to 127.0.0.1:" + std::to_string(daemon.port()) +
           "\nIfc:1000 (Chan:0 Unit:0 Slot:1) Type: 6 (LAN)\n \n";
}

struct stream_end {
    const char* name;
    octet_list octets;  // behind one whole record
    const char* message;
};

void PrintTo(const stream_end& test, std::ostream* out) { *out << test.name; }

class record_stream_end : public testing::TestWithParam<stream_end> {};

TEST_P(record_stream_end, is_told_behind_the_records_before) {
    const scripted_daemon daemon(streaming(trace_record(1, fourteen_octets(0xA1)) + GetParam().octets));
    const outcome got = run(tracing(daemon));
    EXPECT_EQ(got.output, FIRST_SHOWN);
    EXPECT_EQ(got.errors, session_report(daemon) + GetParam().message);
    EXPECT_EQ(got.status, 0);
}

const octet_list SECOND = trace_record(2, fourteen_octets(0xA2));

INSTANTIATE_TEST_SUITE_P(
    streams, record_stream_end,
    testing::Values(stream_end{"between_records", {}, STREAM_END},
                    stream_end{"behind_one_octet", first_octets(SECOND, 1), STREAM_END},
                    stream_end{"inside_a_header", first_octets(SECOND, 21), STREAM_END},
                    stream_end{"behind_a_header", first_octets(SECOND, 22), "data too short! 0<14\n"},
                    stream_end{"inside_the_data", first_octets(SECOND, 35), "data too short! 0<14\n"},
                    stream_end{"length_0", with_length(SECOND, 0), "data too short! 0<-22\n"},
                    stream_end{"length_1", with_length(SECOND, 1), "data too short! 0<-21\n"},
                    stream_end{"length_21", with_length(SECOND, 21), "data too short! 0<-1\n"},
                    stream_end{"length_of_one_octet_more", with_length(SECOND, 37), "data too short! 0<15\n"},
                    stream_end{"longest_length_cut", with_length(SECOND, 8192 + 22), "data too short! 0<8192\n"},
                    stream_end{"length_beyond_the_longest", with_length(trace_record(2, octet_list(8193)), 8193 + 22),
                               "data too short! 0<8193\n"},
                    stream_end{"length_65535", with_length(SECOND, 0xFFFF), "data too short! 0<65513\n"}),
    [](const auto& test) { return std::string(test.param.name); });

/// The error stream of a run whose connection breaks off behind a first record and these octets.
std::string errors_of_broken_connection(const octet_list& octets) {
    std::promise<void> shown;
    const scripted_daemon daemon([&](const tcp_peer& client) {
        streaming(trace_record(1, fourteen_octets(0xA1)) + octets)(client);
        shown.get_future().wait_for(10s);
        client.reset();
    });
    process tracer(tracing(daemon));
    EXPECT_TRUE(tracer.wait_for_output(FIRST_SHOWN));
    shown.set_value();
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, StartsWith(session_report(daemon)));
    return got.errors.substr(std::min(got.errors.size(), session_report(daemon).size()));
}

TEST(record_stream, a_broken_connection_is_no_octets_got) {
    EXPECT_EQ(errors_of_broken_connection({}), "trc hdr too short! = -1<22\n");
    EXPECT_EQ(errors_of_broken_connection(first_octets(SECOND, 10)), "trc hdr too short! = -1<22\n");
    EXPECT_EQ(errors_of_broken_connection(first_octets(SECOND, 30)), "data too short! -1<14\n");
}

TEST(record_stream, shows_every_record_at_once) {
    std::promise<void> shown;
    const scripted_daemon daemon([&shown](const tcp_peer& client) {
        streaming(trace_record(1, fourteen_octets(0xA1)))(client);
        shown.get_future().wait_for(10s);
        client.send(SECOND);
    });
    process tracer(tracing(daemon));
    EXPECT_TRUE(tracer.wait_for_output(FIRST_SHOWN)) << "nothing is shown until more comes";
    shown.set_value();
    EXPECT_EQ(tracer.wait().output, std::string(FIRST_SHOWN) + SECOND_SHOWN);
}

TEST(record_stream, a_record_without_data_has_no_original_length_either) {
    octet_list empty = trace_record(1, {});
    store_be16(&empty[20], 99);
    const scripted_daemon daemon(streaming(empty + SECOND));
    const outcome got = run(tracing(daemon));
    EXPECT_EQ(got.output,
              std::string("000001.000 X DATA[0000]   \n\n!!! Warning: empty DATA message !!!\n") + SECOND_SHOWN);
    EXPECT_EQ(got.errors, session_report(daemon) + STREAM_END);
}

TEST(record_stream, the_longest_record_is_held_whole) {
    octet_list longest = trace_record(1, octet_list(8192, 0x5A));
    longest.back() = 0xA5;
    const scripted_daemon daemon(streaming(longest + SECOND));
    const outcome got = run(tracing(daemon, {"-h", "-!"}));
    EXPECT_THAT(got.output, StartsWith("000001.000 X DATA[8192]   \n      0000: 5a 5a "));
    EXPECT_THAT(got.output,
                HasSubstr("      1ff0: 5a 5a 5a 5a 5a 5a 5a 5a  5a 5a 5a 5a 5a 5a 5a a5  ZZZZZZZZZZZZZZZ.\n"));
    EXPECT_THAT(got.output, HasSubstr("000002.000 X DATA[0014]   \n"));
    EXPECT_EQ(got.errors, session_report(daemon) + STREAM_END);
}

TEST(record_stream, the_length_of_the_protocol_part_is_not_looked_at) {
    octet_list first = trace_record(1, fourteen_octets(0xA1));
    store_be16(&first[2], 12);
    octet_list second = SECOND;
    store_be16(&second[2], 0xFFFF);
    const scripted_daemon daemon(streaming(first + second));
    EXPECT_EQ(run(tracing(daemon)).output, std::string(FIRST_SHOWN) + SECOND_SHOWN);
}

TEST(record_stream, shows_the_length_on_the_line_of_a_cut_frame) {
    octet_list record = trace_record(1, fourteen_octets(0xA1));
    store_be16(&record[20], 1514);
    const scripted_daemon daemon(streaming(record));
    EXPECT_EQ(run(tracing(daemon)).output, "000001.000 X DATA[1514]   \n\n");
}

TEST(record_stream, tells_each_record_at_the_highest_verbosity) {
    const octet_list octets = trace_record(1, fourteen_octets(0xA1)) + with_sequence(trace_record(2, {}), 0xFFFFFFFF) +
                              with_sequence(trace_record(3, octet_list(8192)), 7);
    const scripted_daemon daemon(streaming(octets));
    const std::string told = "Pkt: len 14, sequ: 1\nPkt: len 0, sequ: 4294967295\nPkt: len 8192, sequ: 7\n";
    EXPECT_THAT(run(tracing(daemon, {"-vvv"})).errors, EndsWith("\n \n" + told + STREAM_END));
    EXPECT_THAT(run(tracing(daemon, {"-vv"})).errors, EndsWith("\n \n" + std::string(STREAM_END)));
}

class capture_counter : public testing::Test {
protected:
    temp_directory directory;
    std::string option = "--ofile=" + directory.file("out.pcap");
    std::string created = "created file: " + directory.file("out.pcap") + "\n";
};

TEST_F(capture_counter, shows_the_number_of_each_record) {
    const octet_list octets = with_sequence(trace_record(1, {1}), 12) + with_sequence(trace_record(2, {}), 99999999) +
                              with_sequence(trace_record(3, {3}), 100000000) +
                              with_sequence(trace_record(4, {4}), 0xFFFFFFFF);
    const scripted_daemon daemon(streaming(octets));
    const outcome got = run(tracing(daemon, {"--pcap-file", option}));
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, session_report(daemon) + created + COUNTER_START + COUNTER_BACK + "      12" + COUNTER_BACK +
                              "99999999" + COUNTER_BACK + "100000000" + COUNTER_BACK + "4294967295" + STREAM_END);
}

TEST_F(capture_counter, comes_behind_what_is_told_of_a_record) {
    const scripted_daemon daemon(serving(1));
    EXPECT_THAT(
        run(tracing(daemon, {"-vvv", "--pcap-file", option})).errors,
        EndsWith(std::string(COUNTER_START) + "Pkt: len 14, sequ: 1\n" + COUNTER_BACK + "       1" + STREAM_END));
}

TEST_F(capture_counter, is_not_shown_beside_decoded_records) {
    const scripted_daemon daemon(serving(2));
    const outcome got = run(tracing(daemon, {"--pcap-file", "--print", option}));
    EXPECT_EQ(got.output, std::string(FIRST_SHOWN) + SECOND_SHOWN);
    EXPECT_EQ(got.errors, session_report(daemon) + created + STREAM_END);
}

TEST_F(capture_counter, stands_before_the_message_that_ends_the_stream) {
    const scripted_daemon daemon(streaming(trace_record(1, {1}) + with_length(SECOND, 21)));
    EXPECT_EQ(run(tracing(daemon, {"--pcap-file", option})).errors,
              session_report(daemon) + created + COUNTER_START + COUNTER_BACK + "       1data too short! 0<-1\n");
}

}  // namespace
}  // namespace ifwatch::test
