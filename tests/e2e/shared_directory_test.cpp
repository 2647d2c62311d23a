// A sink in a directory where others may write, too: what they put in its place while the program is at it is neither
// followed nor overwritten.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "support/held_up_errors.h"
#include "support/process.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"

namespace ifwatch::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;

bool wait_until(const std::string& path, bool exists) {
    struct stat entry {};
    const auto until = std::chrono::steady_clock::now() + 10s;
    while ((lstat(path.c_str(), &entry) == 0) != exists && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(1ms);
    }
    return (lstat(path.c_str(), &entry) == 0) == exists;
}

class shared_directory : public testing::Test {
protected:
    /// The run, held up behind these of its messages.
    command held_up(const std::string& sink, const std::string& messages) {
        errors.hold_up_behind(connected_to(daemon) + report_of("6 (LAN)", "") + messages);
        return errors.of(tracing(daemon, {"-V1", sink, "--ofile=" + name, "127.0.0.1", "1000"}));
    }
    /// Waits for the end of a run that is not to have touched the victim.
    void expect_refusal(process& tracer, const std::string& reason) {
        errors.release();
        EXPECT_EQ(tracer.wait().status, 1);
        EXPECT_THAT(errors.release(), EndsWith("ERROR cannot open " + name + " (" + reason + ")\n"));
        std::string text;
        EXPECT_TRUE(read_file(victim, text));
        EXPECT_EQ(text, "precious");
    }

    temp_directory directory;
    std::string name = directory.file("out");
    std::string victim = directory.write("victim", "precious");
    held_up_errors errors;
    scripted_daemon daemon{serving(1)};
};

TEST_F(shared_directory, a_link_in_place_of_the_old_file_is_not_followed) {
    directory.write("out", "old");
    process tracer(held_up("--pcap-file", ""));
    ASSERT_TRUE(wait_until(name, false));
    ASSERT_EQ(symlink(victim.c_str(), name.c_str()), 0);
    expect_refusal(tracer, "File exists");
}

TEST_F(shared_directory, a_file_in_place_of_the_old_one_is_not_overwritten) {
    directory.write("out", "old");
    process tracer(held_up("--pcap-file", ""));
    ASSERT_TRUE(wait_until(name, false));
    ASSERT_EQ(link(victim.c_str(), name.c_str()), 0);
    expect_refusal(tracer, "File exists");
}

/// The same program as another user, nobody in particular, whose files in a sticky directory root cannot be mistaken
/// for.
command as_another_user(command what) {
    what.arguments.insert(what.arguments.begin(), {"--reuid=65534", "--regid=65534", "--clear-groups", what.program});
    what.program = "setpriv";
    return what;
}

class another_user : public shared_directory {
protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root can be two users";
        }
        ASSERT_EQ(chmod(directory.path().c_str(), 01777), 0);
    }
    outcome trace_into_it() {
        return run(as_another_user(tracing(daemon, {"-V1", "--pcap-file", "--ofile=" + name, "127.0.0.1", "1000"})));
    }
};

TEST_F(another_user, keeps_a_file_that_is_not_ours) {
    directory.write("out", "theirs");
    ASSERT_EQ(chmod(name.c_str(), 0666), 0);
    const outcome got = trace_into_it();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR cannot open " + name + " (Operation not permitted)\n"));
    std::string text;
    EXPECT_TRUE(read_file(name, text));
    EXPECT_EQ(text, "theirs");
}

TEST_F(another_user, gets_nothing_by_a_pipe_in_our_place) {
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    ASSERT_EQ(chmod(name.c_str(), 0666), 0);
    process reader({.program = "cat", .arguments = {name}});
    const outcome got = trace_into_it();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, EndsWith("ERROR cannot open " + name + " (Operation not permitted)\n"));
    EXPECT_EQ(reader.wait().output, "");
}

TEST_F(shared_directory, a_link_in_place_of_the_pipe_is_not_followed) {
    process tracer(held_up("--pcap-pipe", "created pipe: " + name + "\n"));
    ASSERT_TRUE(wait_until(name, true));
    ASSERT_EQ(unlink(name.c_str()), 0);
    ASSERT_EQ(symlink(victim.c_str(), name.c_str()), 0);
    expect_refusal(tracer, "Too many levels of symbolic links");
}

TEST_F(shared_directory, a_pipe_that_somebody_removed_is_not_made_a_file) {
    process tracer(held_up("--pcap-pipe", "created pipe: " + name + "\n"));
    ASSERT_TRUE(wait_until(name, true));
    ASSERT_EQ(unlink(name.c_str()), 0);
    expect_refusal(tracer, "No such file or directory");
}

}  // namespace
}  // namespace ifwatch::test
