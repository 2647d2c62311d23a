// What a session of the analyser's plug-in is opened with: the process that sets it up, and the pauses between
// attempts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>
#include <optional>
#include <vector>

#include "base/print.h"
#include "base/verbose.h"
#include "extcap/retry_pause.h"
#include "extcap/router.h"
#include "extcap/session_setup.h"
#include "support/scripted_daemon.h"

namespace ifwatch::extcap {
namespace {

TEST(retry_pause, doubles_up_to_a_minute) {
    retry_pause pause;
    std::vector<int> seconds;
    while (seconds.size() < 9) {
        seconds.push_back(pause.next_s());
    }
    EXPECT_THAT(seconds, testing::ElementsAre(1, 2, 4, 8, 16, 32, 60, 60, 60));
}

/// A router that takes every request and says nothing.
class extcap_setup : public testing::Test {
protected:
    test::scripted_daemon router{[](const test::tcp_peer& client) { client.receive_all(); }};
    plugin_options options;
    session_setup setup;

    void SetUp() override {
        setenv("TRACE_PWD", "admin", 1);
        options.host = "127.0.0.1";
        options.port = static_cast<std::uint16_t>(router.port());
    }
    void TearDown() override {
        set_report_writer(nullptr);
        verbose_level = 0;
        unsetenv("TRACE_PWD");
    }

    void expect_limit(std::optional<std::int32_t> index) {
        router_access access(options);
        failure why;
        ASSERT_TRUE(access.prepare(why)) << why.text;
        ASSERT_TRUE(setup.start(access, index, 1));
        pollfd answer{setup.fd(), POLLIN, 0};
        EXPECT_EQ(poll(&answer, 1, 60'000), 1);
        const opened_session session = setup.take();
        EXPECT_EQ(session.result, set_up::UNREACHABLE) << "it is worth another attempt";
        EXPECT_EQ(session.reason, "no answer within 1 s");
        EXPECT_EQ(setup.fd(), -1);
    }
};

TEST_F(extcap_setup, of_a_trace_has_a_limit_of_time) { expect_limit(1000); }

TEST_F(extcap_setup, of_a_list_has_a_limit_of_time) { expect_limit(std::nullopt); }

}  // namespace
}  // namespace ifwatch::extcap
