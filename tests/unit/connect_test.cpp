#include "trace/connect.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/scripted_daemon.h"

namespace ifwatch {
namespace {

constexpr const char* HOST_VARIABLE = "TRACE_HOST";

/// What a run without a router of its own is told, with TRACE_HOST set to this.
std::string messages_of_connecting(const char* host_variable, int port, bool& connected) {
    unsetenv("TRACE_PORT");
    if (host_variable != nullptr) {
        setenv(HOST_VARIABLE, host_variable, 1);
    } else {
        unsetenv(HOST_VARIABLE);
    }
    testing::internal::CaptureStderr();
    const int socket_fd = connect_trace({.host = nullptr, .port = static_cast<std::uint16_t>(port)}, 1);
    connected = socket_fd >= 0;
    if (connected) {
        close(socket_fd);
    }
    unsetenv(HOST_VARIABLE);
    return testing::internal::GetCapturedStderr();
}

TEST(connect_trace, without_a_router_takes_that_of_the_environment) {
    const test::scripted_daemon daemon([](const test::tcp_peer&) {});
    bool connected = false;
    EXPECT_EQ(messages_of_connecting("127.0.0.1", daemon.port(), connected), "");
    EXPECT_TRUE(connected);
}

TEST(connect_trace, without_any_router) {
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        bool connected = true;
        EXPECT_EQ(messages_of_connecting(value, 7000, connected), "Environment Variable 'TRACE_HOST' not set!\n");
        EXPECT_FALSE(connected);
    }
}

}  // namespace
}  // namespace ifwatch
