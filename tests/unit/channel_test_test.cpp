#include "trace/channel_test.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "base/print.h"
#include "support/scripted_daemon.h"

namespace ifwatch {
namespace {

TEST(channel_test, a_router_that_goes_away_answers_no_probe) {
    static std::optional<test::scripted_daemon> daemon;
    static std::string output;
    daemon.emplace([](const test::tcp_peer&) {});
    const session_settings settings{.host = "127.0.0.1", .port = static_cast<std::uint16_t>(daemon->port())};
    // The first connection stands; what is printed behind it is where the daemon goes.
    set_output_writer([](const char* data, std::size_t length) {
        daemon.reset();
        output.append(data, length);
        return static_cast<long>(length);
    });
    testing::internal::CaptureStderr();
    trace_target target;
    EXPECT_EQ(channel_test(settings, target), 0);
    set_output_writer(nullptr);
    EXPECT_EQ(output, "Testing available trace channels:\nChMax Unit Slot ChType\n");
    std::string refusals;
    for (int probe = 0; probe < 9 * 3; ++probe) {  // units 20, 0 and 1 of slots 0 to 8
        refusals += "ERROR connect (Connection refused)\n";
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), refusals);
}

TEST(channel_test, fails_when_the_router_cannot_be_reached) {
    std::uint16_t free_port = 0;
    {
        const test::scripted_daemon gone([](const test::tcp_peer&) {});
        free_port = static_cast<std::uint16_t>(gone.port());
    }
    testing::internal::CaptureStderr();
    trace_target target;
    EXPECT_EQ(channel_test({.host = "127.0.0.1", .port = free_port}, target), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR connect (Connection refused)\n");
}

}  // namespace
}  // namespace ifwatch
