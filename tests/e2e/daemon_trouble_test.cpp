// The real ifwatch against the real ifwatch-sim: every fault, another version, an error, and what the user is told.

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

// The second record is long enough to be cut inside its data, the first and the third inside their headers.
constexpr const char* THREE_FRAMES =
    "channel 0\n"
    "record R 1000\n 00 01 7F\n"
    "record X 1200\n 00 01 03 00*57\n"
    "record R 1300\n 00 01 53 AA BB\n";

constexpr const char* FIRST_SHOWN = "000001.000 R #00000001 DATA[0003]   \n\n";
constexpr const char* SECOND_SHOWN = "000001.200 X #00000002 DATA[0060]   \n\n";
constexpr const char* THIRD_SHOWN = "000001.300 R #00000003 DATA[0005]   \n\n";
const std::string ALL_SHOWN = std::string(FIRST_SHOWN) + SECOND_SHOWN + THIRD_SHOWN;
constexpr const char* STREAM_END = "trc hdr too short! = 0<22\n";

std::string report_of(const std::string& type, const std::string& text) {
    return "Ifc:1000 (Chan:0 Unit:0 Slot:1) Type: " + type + "\n " + text + "\n";
}

const std::string D_CHANNEL = report_of("0 (ISDN D-channel)", "");

/// A simulator of the three frames with these options, and ifwatch watching it; no layer is decoded.
struct trouble {
    explicit trouble(std::vector<std::string> options) : sim({THREE_FRAMES}, std::move(options)) {}

    [[nodiscard]] outcome watch(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), "-t");
        return sim.watch(options);
    }
    [[nodiscard]] std::string connected() const {
        return "ifwatch: connected to 127.0.0.1:" + std::to_string(sim.port()) + "\n";
    }

    simulator sim;
};

TEST(fault, cut_inside_a_header) {
    const trouble with({"--fault", "cut=3"});
    const outcome got = with.watch();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, std::string(FIRST_SHOWN) + SECOND_SHOWN);
    EXPECT_EQ(got.errors, with.connected() + D_CHANNEL + STREAM_END);
}

TEST(fault, cut_inside_the_data) {
    const trouble with({"--fault", "cut=2"});
    const outcome got = with.watch();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, FIRST_SHOWN);
    EXPECT_EQ(got.errors, with.connected() + D_CHANNEL + "data too short! 0<60\n");
}

TEST(fault, drip_changes_nothing) {
    const trouble with({"--fault", "drip"});
    for (const char* const version : {"-V1", "-V2", "-V3"}) {
        const outcome got = with.watch({version});
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.output, ALL_SHOWN) << version;
        EXPECT_EQ(got.errors, with.connected() + D_CHANNEL + STREAM_END) << version;
    }
}

TEST(fault, silence_is_waited_through) {
    trouble with({"--fault", "silence=2"});
    process tracer({.program = IFWATCH_PROGRAM,
                    .arguments = {"--pwd=admin", "-t", "-P" + std::to_string(with.sim.port()), "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_output(SECOND_SHOWN));
    EXPECT_EQ(tracer.errors(), with.connected() + D_CHANNEL);
    EXPECT_EQ(with.sim.program().terminate().status, 0);
    const outcome got = tracer.wait();
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, std::string(FIRST_SHOWN) + SECOND_SHOWN);
    EXPECT_EQ(got.errors, with.connected() + D_CHANNEL + STREAM_END);
}

TEST(fault, silence_from_the_start) {
    trouble with({"--fault", "silence=0"});
    process tracer({.program = IFWATCH_PROGRAM,
                    .arguments = {"--pwd=admin", "-t", "-P" + std::to_string(with.sim.port()), "127.0.0.1", "1000"}});
    ASSERT_TRUE(tracer.wait_for_errors(D_CHANNEL));
    tracer.send_signal(SIGINT);
    const outcome got = tracer.wait();
    EXPECT_EQ(got.signal, SIGINT) << "without a pipe to remove, signals do what they always do";
    EXPECT_EQ(got.output, "");
}

TEST(fault, wrong_record_lengths) {
    const struct {
        const char* length;
        const char* message;
    } rows[] = {{"0", "data too short! 0<-22\n"},
                {"21", "data too short! 0<-1\n"},
                {"8214", "data too short! 0<8192\n"},
                {"8215", "data too short! 0<8193\n"},
                {"65535", "data too short! 0<65513\n"}};
    for (const auto& row : rows) {
        const trouble with({"--fault", std::string("length=record:2:") + row.length});
        const outcome got = with.watch();
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.output, FIRST_SHOWN);
        EXPECT_EQ(got.errors, with.connected() + D_CHANNEL + row.message);
    }
}

TEST(fault, wrong_length_of_the_version) {
    const trouble with({"--fault", "length=element:2:2"});
    const outcome got = with.watch();
    EXPECT_EQ(got.status, 0) << "version 1 is tried, and served";
    EXPECT_EQ(got.output, ALL_SHOWN);
    EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", "no RVERSION received") + with.connected() +
                              D_CHANNEL + STREAM_END);
}

TEST(fault, wrong_lengths_of_the_reply) {
    const struct {
        const char* element;
        const char* text;
    } rows[] = {{"1:100", "read buffer overflow"}, {"1:16777214", "read buffer overflow"}};
    for (const auto& row : rows) {
        const trouble with({"--fault", std::string("length=element:") + row.element});
        const outcome got = with.watch();
        EXPECT_EQ(got.status, 0) << "version 1 is tried, and served";
        EXPECT_EQ(got.errors,
                  with.connected() + report_of("-1 (not-found)", row.text) + with.connected() + D_CHANNEL + STREAM_END);
    }
    const trouble with({"--fault", "length=element:0:1", "--close-after", "reply"});
    const outcome got = with.watch();
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, with.connected() + report_of("0 (ISDN D-channel)", "missing elem data"))
        << "behind the channel type there is nothing to try again";
}

TEST(other_version, is_tried_when_the_daemon_names_it) {
    for (const char* const version : {"1", "2"}) {
        const trouble with({"--version", version});
        const outcome got = with.watch();
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.output, ALL_SHOWN);
        EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", "missing elem header data") +
                                  with.connected() + D_CHANNEL + STREAM_END);
    }
}

TEST(other_version, cannot_be_named_to_a_client_of_version_1) {
    const trouble with({"--version", "3"});
    const outcome got = with.watch({"-V1"});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", "negative trace acknowledge"));
}

TEST(error_of_the_daemon, ends_the_session_with_its_text) {
    const trouble with({"--error", "trace is locked"});
    for (const char* const version : {"-V2", "-V3"}) {
        const outcome got = with.watch({version});
        EXPECT_EQ(got.status, 1) << version;
        EXPECT_EQ(got.output, "");
        EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", "trace is locked")) << version;
    }
    const outcome listed = with.sim.watch({}, {});
    EXPECT_EQ(listed.status, 1);
    EXPECT_EQ(listed.errors, with.connected() + " trace is locked\n");
    const outcome old = with.watch({"-V1"});
    EXPECT_EQ(old.status, 1);
    EXPECT_EQ(old.errors, with.connected() + report_of("-1 (not-found)", "negative trace acknowledge"));
}

TEST(error_of_the_daemon, may_have_99_characters) {
    const trouble with({"--error", std::string(98, 'e') + "!more"});
    const outcome got = with.watch();
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", std::string(98, 'e') + "!"));
}

TEST(error_of_the_daemon, leaves_no_sink_behind) {
    const trouble with({"--error", "trace is locked"});
    const temp_directory directory;
    const outcome got = with.watch({"--pcap-pipe", "--ofile=" + directory.file("out")});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, with.connected() + report_of("-1 (not-found)", "trace is locked"));
    std::string text;
    EXPECT_FALSE(read_file(directory.file("out"), text));
}

}  // namespace
}  // namespace ifwatch::test
