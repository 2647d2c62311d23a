// Long runs of the real programs: memory that stays as it was, and a last line that is right. The test run takes a
// tenth of what a release is tried with: ENDURANCE_RECORDS=10000000 ENDURANCE_HOURS=24 ./dev test -R endurance

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "support/process.h"
#include "support/programs.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

constexpr std::uint64_t LOOK_AT_RECORD = 1000;  // memory is first looked at here

std::uint64_t figure(const char* variable, std::uint64_t otherwise) {
    const char* const value = std::getenv(variable);
    return value != nullptr ? std::strtoull(value, nullptr, 10) : otherwise;
}

/// Resident memory of a process at its highest so far, in KiB; 0 when it is not told.
std::uint64_t highest_memory(pid_t id) {
    std::ifstream lines("/proc/" + std::to_string(id) + "/status");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::strtoull(line.c_str() + 6, nullptr, 10);
        }
    }
    return 0;
}

/// What a tracer printed in a long run, and its memory on the way.
struct long_run {
    std::uint64_t records = 0;       // lines with a time stamp
    std::string last;                // the last of them
    std::uint64_t memory_early = 0;  // KiB, when LOOK_AT_RECORD had been printed
    std::uint64_t memory_late = 0;   // KiB, with everything printed
    std::string errors;
    int status = -1;
};

/// Reads the tracer's text line by line, as it comes, and keeps nothing but what is asked for.
void read_lines(FILE* output, pid_t tracer, long_run& result) {
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), line.size(), output) != nullptr) {
        if (line[0] < '0' || line[0] > '9') {
            continue;
        }
        result.last = line.data();
        if (++result.records == LOOK_AT_RECORD) {
            result.memory_early = highest_memory(tracer);
        }
        result.memory_late = result.records % 65536 == 0 ? highest_memory(tracer) : result.memory_late;
    }
}

/// The tracer with its standard output on a pipe of ours, its error stream in a file.
long_run watch(const simulator& sim, const std::vector<std::string>& options) {
    const temp_directory directory;
    const std::string errors = directory.file("errors");
    std::vector<std::string> words = {IFWATCH_PROGRAM, "--pwd=admin", "-P" + std::to_string(sim.port())};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"127.0.0.1", "1000"});
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t tracer = fork();
    if (tracer == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), STDERR_FILENO);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    long_run result;
    FILE* const output = fdopen(ends[0], "r");
    read_lines(output, tracer, result);
    std::fclose(output);
    int status = 0;
    waitpid(tracer, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    EXPECT_TRUE(read_file(errors, result.errors));
    return result;
}

/// Room for pages that are touched late; a leak of one octet a record does not fit into it.
constexpr std::uint64_t MEMORY_SLACK = 64;  // KiB

// A sanitizer's library takes memory of its own, and marks that of the program.
#ifdef IFWATCH_ADDRESS_SANITIZER
constexpr std::uint64_t MEMORY_MAXIMUM = std::uint64_t{48} * 1024;  // KiB
#else
constexpr std::uint64_t MEMORY_MAXIMUM = std::uint64_t{16} * 1024;  // KiB
#endif

void expect_constant_memory(const long_run& got) {
    ASSERT_NE(got.memory_early, 0U);
    EXPECT_LE(got.memory_late, got.memory_early + MEMORY_SLACK);
    EXPECT_LT(got.memory_late, MEMORY_MAXIMUM);
}

TEST(endurance, records_at_full_speed) {
    // Ten frames of a D-channel link, one a millisecond.
    const std::uint64_t records = figure("ENDURANCE_RECORDS", 1'000'000);
    std::string trace = "channel 0\n";
    for (int i = 0; i < 10; ++i) {
        trace += "record " + std::string(i % 2 == 0 ? "R " : "X ") + std::to_string(i) + "\n 00 8D 01 " +
                 (i % 2 == 0 ? "04" : "06") + "\n";
    }
    const simulator sim({trace}, {"--once", "--loop", std::to_string(records / 10)});
    const long_run got = watch(sim, {"-2"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.records, records);
    std::array<char, 64> last{};
    const std::uint64_t time = records - 1;
    std::snprintf(last.data(), last.size(), "%06llu.%03llu X #%08llu DATA[0004]   \n",
                  static_cast<unsigned long long>(time / 1000), static_cast<unsigned long long>(time % 1000),
                  static_cast<unsigned long long>(records));
    EXPECT_EQ(got.last, last.data());
    EXPECT_TRUE(got.errors.ends_with("trc hdr too short! = 0<22\n")) << got.errors;
    expect_constant_memory(got);
}

TEST(endurance, a_day_of_a_b_channel_at_line_rate) {
    // 64 kbit/s, transparent: 160 octets each 20 ms, at as many times its speed as brings it through in about 30 s.
    const std::uint64_t hours = figure("ENDURANCE_HOURS", 2);
    const std::uint64_t records = hours * 3600 * 50;
    const simulator sim({"channel 1\nrecord R 0\n 01 03 07*156 01 03\nrecord X 20\n 01 01 05*156 01 01\n"},
                        {"--once", "--pace", "2880", "--loop", std::to_string(records / 2)});
    const long_run got = watch(sim, {"-2", "-h"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.records, records);
    std::array<char, 64> last{};
    std::snprintf(last.data(), last.size(), "%06llu.980 X ", static_cast<unsigned long long>(hours * 3600 - 1));
    EXPECT_TRUE(got.last.starts_with(last.data())) << got.last;
    EXPECT_TRUE(got.errors.ends_with("trc hdr too short! = 0<22\n")) << got.errors;
    expect_constant_memory(got);
}

}  // namespace
}  // namespace ifwatch::test
