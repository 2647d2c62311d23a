// Where the password of the login comes from.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"

namespace ifwatch::test {
namespace {

TEST(password, is_asked_for_and_cut_at_31_characters) {
    std::vector<std::uint8_t> reply;
    const scripted_daemon daemon(logging_in_to(reply, {1, 0, 0, 0, 0, 0, 0, 0, 0}));
    const std::string cut = "0123456789012345678901234567890";
    const outcome got = trace(daemon, {"-vvv", "127.0.0.1", "1000"}, cut + "tail\nmore\n");
    EXPECT_NE(got.errors.find("Enter remote password: got AUTH random"), std::string::npos) << got.errors;
    EXPECT_EQ(got.output.substr(0, got.output.find('\n') + 1), "pwd:" + cut + ". (31)\n");
    const auto asked = reply;
    trace(daemon, {"--pwd=" + cut, "127.0.0.1", "1000"});
    EXPECT_EQ(reply, asked);
}

TEST(password, empty_at_the_end_of_input_and_stripped_of_its_line_end) {
    const scripted_daemon daemon(replying({0, 0, 0, 0}));
    EXPECT_EQ(trace(daemon, {"-vvv", "127.0.0.1", "1000"}, "").output.substr(0, 10), "pwd:. (0)\n");
    EXPECT_EQ(trace(daemon, {"-vvv", "127.0.0.1", "1000"}, "abc\r\n").output.substr(0, 13), "pwd:abc. (3)\n");
}

TEST(password, from_the_environment) {
    const scripted_daemon daemon(replying({0, 0, 0, 0}));
    const outcome got = run({.program = IFWATCH_PROGRAM,
                             .arguments = {daemon.port_option(), "127.0.0.1", "1000"},
                             .environment = {{"TRACE_PWD", "secret"}}});
    EXPECT_EQ(got.errors,
              connected_to(daemon) + "using environ $TRACE_PWD as password\n" + report_of(NO_TYPE, "") + STREAM_END);
    const outcome given = run({.program = IFWATCH_PROGRAM,
                               .arguments = {daemon.port_option(), "--pwd=x", "127.0.0.1", "1000"},
                               .environment = {{"TRACE_PWD", "secret"}}});
    EXPECT_EQ(given.errors, connected_to(daemon) + report_of(NO_TYPE, "") + STREAM_END);
}

}  // namespace
}  // namespace ifwatch::test
