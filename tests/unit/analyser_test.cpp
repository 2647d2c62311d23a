#include "client/analyser.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "base/verbose.h"

namespace ifwatch {
namespace {

constexpr const char* EXEC_VARIABLE = "TRACE_EXEC";

/// What is told while a program is started, at a verbosity of its own. The program has ended when this returns.
template <class Start>
std::string messages_of(int level, Start start) {
    verbose_level = level;
    testing::internal::CaptureStderr();
    start();
    while (wait(nullptr) > 0) {
    }
    verbose_level = 0;
    return testing::internal::GetCapturedStderr();
}

std::string messages_of_exec(int level, std::string command) {
    return messages_of(level, [&command] { exec_cmd(command.data()); });
}

std::string messages_of_start(const std::string& pipe_name) {
    return messages_of(2, [&pipe_name] { start_analyser(pipe_name.c_str()); });
}

TEST(exec_cmd, tells_only_that_it_starts) { EXPECT_EQ(messages_of_exec(0, "true a b"), "starting: true a b\n"); }

TEST(exec_cmd, splits_at_blanks) {
    EXPECT_EQ(messages_of_exec(2, "true -k  -i   name"),
              "starting: true -k  -i   name\n"
              "exec_cmd: args 0: true\n"
              "exec_cmd: args 1: -k\n"
              "exec_cmd: args 2: -i\n"
              "exec_cmd: args 3: name\n"
              "exec_cmd: args 4: (null)\n");
}

TEST(exec_cmd, a_word_alone) {
    EXPECT_EQ(messages_of_exec(2, "true"),
              "starting: true\n"
              "exec_cmd: args 0: true\n"
              "exec_cmd: args 1: (null)\n");
}

TEST(exec_cmd, a_blank_at_the_end_starts_an_empty_word) {
    EXPECT_EQ(messages_of_exec(2, "true a  "),
              "starting: true a  \n"
              "exec_cmd: args 0: true\n"
              "exec_cmd: args 1: a\n"
              "exec_cmd: args 2: \n"
              "exec_cmd: args 3: (null)\n");
}

TEST(exec_cmd, a_blank_in_front_leaves_the_first_word_empty) {
    EXPECT_EQ(messages_of_exec(2, " true"),
              "starting:  true\n"
              "exec_cmd: args 0: \n"
              "exec_cmd: args 1: true\n"
              "exec_cmd: args 2: (null)\n"
              "\nERROR exec:  (No such file or directory)\n"
              "\tstart now manually or set $TRACE_EXEC (default: \"ethereal -Sk -i\")\n");
}

TEST(exec_cmd, the_fortieth_word_keeps_the_rest) {
    std::string command = "true";
    std::string expected = "exec_cmd: args 0: true\n";
    for (int i = 1; i < 39; ++i) {
        command += " w" + std::to_string(i);
        expected += "exec_cmd: args " + std::to_string(i) + ": w" + std::to_string(i) + "\n";
    }
    expected += "exec_cmd: args 39: one  two three \nexec_cmd: args 40: (null)\n";
    command += " one  two three ";
    EXPECT_EQ(messages_of_exec(2, command), "starting: " + command + "\n" + expected);
}

TEST(exec_cmd, tells_the_process_at_the_highest_level) {
    std::string command = "true";
    verbose_level = 3;
    testing::internal::CaptureStderr();
    exec_cmd(command.data());
    const int child = wait(nullptr);
    verbose_level = 0;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "starting: true\nexec_cmd: args 0: true\nexec_cmd: args 1: (null)\nstarted pid " + std::to_string(child) +
                  "\n");
}

TEST(exec_cmd, a_program_that_is_not_there_says_how_to_go_on) {
    EXPECT_EQ(messages_of_exec(0, "no-such-analyser -i name"),
              "starting: no-such-analyser -i name\n"
              "\nERROR exec: no-such-analyser (No such file or directory)\n"
              "\tstart now manually or set $TRACE_EXEC (default: \"ethereal -Sk -i\")\n");
}

TEST(exec_cmd, the_program_that_is_not_there_ends_with_status_1) {
    std::string command = "/no/such/analyser";
    testing::internal::CaptureStderr();
    exec_cmd(command.data());
    int state = 0;
    EXPECT_GT(wait(&state), 0);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(WIFEXITED(state));
    EXPECT_EQ(WEXITSTATUS(state), 1);
}

TEST(start_analyser, takes_the_command_of_the_environment) {
    setenv(EXEC_VARIABLE, "true -k -i", 1);
    EXPECT_EQ(messages_of_start("/tmp/name"),
              "start prog $TRACE_EXEC\n"
              "starting: true -k -i /tmp/name\n"
              "exec_cmd: args 0: true\n"
              "exec_cmd: args 1: -k\n"
              "exec_cmd: args 2: -i\n"
              "exec_cmd: args 3: /tmp/name\n"
              "exec_cmd: args 4: (null)\n");
    unsetenv(EXEC_VARIABLE);
}

TEST(start_analyser, has_a_command_of_its_own) {
    const char* const found = std::getenv("PATH");
    const std::string path = found != nullptr ? found : "";
    setenv("PATH", "/no/such/directory", 1);
    for (const bool set_but_empty : {false, true}) {
        if (set_but_empty) {
            setenv(EXEC_VARIABLE, "", 1);
        }
        EXPECT_EQ(messages_of_start("/tmp/name"),
                  "starting: ethereal -Sk -i /tmp/name\n"
                  "exec_cmd: args 0: ethereal\n"
                  "exec_cmd: args 1: -Sk\n"
                  "exec_cmd: args 2: -i\n"
                  "exec_cmd: args 3: /tmp/name\n"
                  "exec_cmd: args 4: (null)\n"
                  "\nERROR exec: ethereal (No such file or directory)\n"
                  "\tstart now manually or set $TRACE_EXEC (default: \"ethereal -Sk -i\")\n");
    }
    unsetenv(EXEC_VARIABLE);
    setenv("PATH", path.c_str(), 1);
}

TEST(start_analyser, a_command_is_cut_at_255_characters) {
    setenv(EXEC_VARIABLE, ("true " + std::string(245, 'x')).c_str(), 1);
    EXPECT_EQ(messages_of(0, [] { start_analyser("/tmp/name"); }),
              "start prog $TRACE_EXEC\nstarting: true " + std::string(245, 'x') + " /tmp\n");
    unsetenv(EXEC_VARIABLE);
}

}  // namespace
}  // namespace ifwatch
