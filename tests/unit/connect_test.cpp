#include "trace/connect.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

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

/// What is taken of the addresses that a resolver lists for a name.
std::string first_of(std::vector<in_addr> addresses, const char* text, int family = AF_INET) {
    std::vector<char*> list;
    for (in_addr& address : addresses) {
        list.push_back(reinterpret_cast<char*>(&address));  // as the library hands them out
    }
    list.push_back(nullptr);
    hostent found{};
    found.h_addrtype = family;
    found.h_length = sizeof(in_addr);
    found.h_addr_list = list.data();
    return inet_ntoa(first_address(&found, text));
}

TEST(first_address, is_the_first_that_the_resolver_lists) {
    const in_addr near{inet_addr("127.0.0.1")};
    const in_addr far{inet_addr("198.51.100.7")};
    EXPECT_EQ(first_of({far, near}, "two.test"), "198.51.100.7");
    EXPECT_EQ(first_of({near, far}, "two.test"), "127.0.0.1");
}

TEST(first_address, is_the_dotted_one_where_the_resolver_has_none) {
    EXPECT_EQ(first_of({}, "192.0.2.1 "), "192.0.2.1");
    EXPECT_EQ(first_of({in_addr{1}}, "192.0.2.1", AF_INET6), "192.0.2.1");
    EXPECT_STREQ(inet_ntoa(first_address(nullptr, "192.0.2.1 ")), "192.0.2.1");
    EXPECT_EQ(first_address(nullptr, "no.such.name").s_addr, INADDR_NONE);
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
