// The channel test of a router that cannot list its interfaces.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"

namespace ifwatch::test {
namespace {

TEST(channel_test, prints_a_line_for_each_unit_that_answers) {
    // Slot 2 has one unit with channels 0 and 1, and answers for it as unit 20, so that unit 1 is not asked for; slot 5
    // answers for units 0 and 1, channel 0 only.
    const scripted_daemon daemon([](const tcp_peer& client) {
        const auto request = client.receive(TRACE_REQUEST_OCTETS);
        if (request.size() < TRACE_REQUEST_OCTETS) {
            return;
        }
        const int slot = request[7];
        const int unit = request[11];
        const int channel = request[15];
        if ((slot == 2 && unit == 20) || (slot == 2 && unit <= 1 && channel <= 1)) {
            client.send({channel});
        } else if (slot == 5 && unit < 2 && channel == 0) {
            client.send({0xFE});
        }
    });
    for (const std::string version : {"-V1", "-V2"}) {
        const outcome got = trace(daemon, {version, "127.0.0.1"});
        EXPECT_EQ(got.output,
                  "Testing available trace channels:\nChMax Unit Slot ChType\n"
                  "    1    0    2  -  1\n"
                  "    0    0    5  -  -2\n"
                  "    0    1    5  -  -2\n");
        EXPECT_EQ(got.errors, "");
        EXPECT_EQ(got.status, 1);
    }
}

TEST(channel_test, shows_its_requests_at_higher_verbosity) {
    std::vector<std::uint8_t> first;
    const scripted_daemon daemon([&first](const tcp_peer& client) {
        const auto request = client.receive(TRACE_REQUEST_OCTETS);
        if (first.empty()) {
            first = request;
        }
    });
    const outcome got = trace(daemon, {"-vv", "-V1", "127.0.0.1"});
    EXPECT_EQ(version_of(first), 3) << "the request names the version of the target block, whatever was asked for";
    const std::string attempt =
        "try connect to 127.0.0.1:" + std::to_string(daemon.port()) + "\n" + connected_to(daemon);
    EXPECT_EQ(got.errors.substr(0, 2 * attempt.size() + 36),
              attempt + attempt + "written vtrace: V.3, 0/20/0 tlen: -1");
}

TEST(channel_test, an_unreachable_router_prints_only_the_error) {
    int free_port = 0;
    {
        const scripted_daemon gone([](const tcp_peer&) {});
        free_port = gone.port();
    }
    const outcome got =
        run({.program = IFWATCH_PROGRAM, .arguments = {"-V2", "-P" + std::to_string(free_port), "127.0.0.1"}});
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, "ERROR connect (Connection refused)\n");
    EXPECT_EQ(got.status, 1);
}

}  // namespace
}  // namespace ifwatch::test
