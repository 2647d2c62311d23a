// The rules of the system-call filter: none may be missed quietly. In this program the library takes every rule but the
// one that a test names.

#ifdef IFWATCH_HAS_SECCOMP

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <seccomp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>

#include "client/confinement.h"

namespace ifwatch::test {
namespace {

constexpr int NONE = -1;

int rules = 0;  // that were asked for
int refused = NONE;

}  // namespace
}  // namespace ifwatch::test

// They stand before those of the library, of which one does the work of both.
extern "C" int seccomp_rule_add_array(scmp_filter_ctx context, std::uint32_t action, int number, unsigned int count,
                                      const scmp_arg_cmp* arguments) {
    using function = int (*)(scmp_filter_ctx, std::uint32_t, int, unsigned int, const scmp_arg_cmp*);
    static const auto REAL = reinterpret_cast<function>(dlsym(RTLD_NEXT, "seccomp_rule_add_array"));
    return ifwatch::test::rules++ == ifwatch::test::refused ? -ENOMEM : REAL(context, action, number, count, arguments);
}

extern "C" int seccomp_rule_add(scmp_filter_ctx context, std::uint32_t action, int number, unsigned int count, ...) {
    return count != 0 ? -EINVAL : seccomp_rule_add_array(context, action, number, 0, nullptr);
}

namespace ifwatch::test {
namespace {

constexpr record_loop_files EVERYTHING = {.input_fd = 20, .sink_fd = 21, .has_pipe = true};

int exit_status_of(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

/// What a child gets that confines itself while one rule, counted from 0, is refused.
int error_without(int rule) {
    const pid_t child = fork();
    if (child == 0) {
        refused = rule;
        _exit(confine_to_record_loop(EVERYTHING));
    }
    return exit_status_of(child);
}

int count_rules() {
    const pid_t child = fork();
    if (child == 0) {
        _exit(confine_to_record_loop(EVERYTHING) == 0 ? rules : 0);
    }
    return exit_status_of(child);
}

TEST(refused_rule, is_told_whichever_it_is) {
    const int count = count_rules();
    EXPECT_GT(count, 10);
    for (int rule = 0; rule < count; ++rule) {
        EXPECT_EQ(error_without(rule), ENOMEM) << rule;
    }
}

/// Whether a child that is confined with that sink, standing at descriptor 0, can still write to it.
bool can_write_to_first_descriptor(int sink_fd) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool confined =
            dup2(ends[1], 0) == 0 && confine_to_record_loop({.input_fd = 20, .sink_fd = sink_fd}) == 0;
        _exit(confined && write(0, "x", 1) == 1 ? 0 : 1);
    }
    close(ends[0]);
    close(ends[1]);
    return exit_status_of(child) == 0;
}

TEST(first_descriptor, is_left_to_a_sink) {
    EXPECT_TRUE(can_write_to_first_descriptor(0));
    EXPECT_FALSE(can_write_to_first_descriptor(-1));
}

}  // namespace
}  // namespace ifwatch::test

#endif
