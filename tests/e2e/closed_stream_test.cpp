// A run that was started with a standard stream closed: neither the connection nor the sink may take its place.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;

using octet_list = std::vector<std::uint8_t>;

/// Runs ifwatch for interface 1000 with the redirections of a shell, such as "<&-".
outcome trace_with(const std::string& redirections, const scripted_daemon& daemon, std::vector<std::string> options) {
    options.insert(options.begin(), {"-c", R"(exec "$0" "$@" )" + redirections, IFWATCH_PROGRAM, daemon.port_option()});
    options.insert(options.end(), {"127.0.0.1", "1000"});
    return run({.program = "sh", .arguments = std::move(options)});
}

/// `serving`, which also keeps what the client sends from its trace request on.
scripted_daemon::script listening(std::uint8_t records, std::promise<octet_list>& heard) {
    return [records, &heard](const tcp_peer& client) {
        octet_list all = client.receive(TRACE_REQUEST_OCTETS);
        client.send({CHANNEL_TYPE_LAN});
        for (std::uint8_t i = 1; i <= records; ++i) {
            client.send(trace_record(i, octet_list(14, static_cast<std::uint8_t>(0xA0 + i))));
        }
        client.end_sending();
        const octet_list more = client.receive_all();
        all.insert(all.end(), more.begin(), more.end());
        heard.set_value(all);
    };
}

class closed_stream : public testing::Test {
protected:
    temp_directory directory;
    std::string name = directory.file("out.pcap");
    std::string option = "--ofile=" + name;
    std::promise<octet_list> heard;
    scripted_daemon daemon{listening(2, heard)};

    std::string written() {
        std::string text;
        EXPECT_TRUE(read_file(name, text));
        return text;
    }
    std::size_t octets_heard() {
        auto all = heard.get_future();
        return all.wait_for(10s) == std::future_status::ready ? all.get().size() : 0;
    }
};

TEST_F(closed_stream, output_fails_instead_of_going_to_the_router) {
    const outcome got = trace_with(">&-", daemon, {"-V1"});
    EXPECT_EQ(octets_heard(), TRACE_REQUEST_OCTETS);
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("\nERROR write (Bad file descriptor)\n"));
}

TEST_F(closed_stream, errors_do_not_go_to_the_router) {
    const outcome got = trace_with("2>&-", daemon, {"-V1", "-vvv"});
    EXPECT_EQ(octets_heard(), TRACE_REQUEST_OCTETS);
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, HasSubstr("000002.000 X DATA[0014]   \n"));
}

TEST_F(closed_stream, output_does_not_go_into_the_file) {
    const outcome got = trace_with("<&- >&-", daemon, {"-V1", "--pcap-file", "--print", option});
    EXPECT_EQ(written(), pcap_of(1)) << "the run ends with the first record it cannot print";
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("\nERROR write (Bad file descriptor)\n"));
    EXPECT_EQ(octets_heard(), TRACE_REQUEST_OCTETS);
}

TEST_F(closed_stream, errors_do_not_go_into_the_file) {
    EXPECT_EQ(trace_with("<&- 2>&-", daemon, {"-V1", "--pcap-file", option}).status, 0);
    EXPECT_EQ(written(), pcap_of(2));
}

TEST_F(closed_stream, a_file_needs_none_of_them) {
    EXPECT_EQ(trace_with("<&- >&- 2>&-", daemon, {"-V1", "--pcap-file", option}).status, 0);
    EXPECT_EQ(written(), pcap_of(2));
    EXPECT_EQ(octets_heard(), TRACE_REQUEST_OCTETS);
}

TEST(closed_input, gives_an_empty_password) {
    octet_list reply;
    const scripted_daemon daemon(logging_in_to(reply, {0, 0, 0, 0, 0, 0, 0, 0, 0}));
    const outcome got = trace_with("<&-", daemon, {});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors, HasSubstr("Enter remote password: "));
    // printf '\0\0\0\0\0\0\0\0\0admin' | md5sum
    EXPECT_EQ(reply, (octet_list{0, 0, 9, 10, 0, 0x8F, 0x86, 0x66, 0x47, 0x86, 0xA1, 0xC5, 0xF7}));
}

}  // namespace
}  // namespace ifwatch::test
