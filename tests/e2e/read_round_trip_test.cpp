// Every sample comes back: what ifwatch-read shows of a capture is what ifwatch showed live, but for what the format of
// the capture has no room for. That is named here, as in the manual page, and nothing else may differ.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "capture/channel_types.h"
#include "cases/case_text.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/simulator.h"
#include "support/temp_directory.h"
#include "support/words.h"

namespace ifwatch::test {
namespace {

std::vector<std::string> all_samples() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(SAMPLES_DIRECTORY)) {
        if (entry.path().extension() == ".case") {
            names.insert(entry.path().stem());
        }
    }
    return {names.begin(), names.end()};
}

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class round_trip : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        const std::string path = SAMPLES_DIRECTORY + std::string("/") + GetParam() + ".case";
        std::string error;
        ASSERT_TRUE(read_case_file(path, sample, error)) << error;
        sample.interface_index = 1000;
    }

    /// What ifwatch-read shows of the capture, with the sample's options and more.
    std::string shown(const std::vector<std::string>& options) {
        const outcome got = run({IFWATCH_READ_PROGRAM, joined(options, {capture})});
        EXPECT_EQ(got.status, 0) << got.errors;
        return got.output;
    }

    static std::string live(const simulator& router, const std::vector<std::string>& options) {
        const outcome got = router.watch(options);
        EXPECT_EQ(got.status, 0) << got.errors;
        return got.output;
    }

    cases::trace_case sample;
    temp_directory directory;
    std::string capture = directory.file("capture");
};

TEST_P(round_trip, of_a_capture_by_the_plug_in_has_all) {
    const simulator router({case_text(sample, GetParam())});
    ASSERT_TRUE(write_file(capture, ""));
    const outcome plugged =
        run({.program = IFWATCH_EXTCAP_PROGRAM,
             .arguments = {"--capture", "--extcap-interface", "ifwatch", "--fifo", capture, "--host", "127.0.0.1",
                           "--port", std::to_string(router.port()), "--interface", "1000", "--router-time"},
             .environment = {{"TRACE_PWD", "admin"}}});
    ASSERT_EQ(plugged.status, 0) << plugged.errors;
    for (const std::string& options : sample.options) {
        const std::vector<std::string> words = words_of(options);
        EXPECT_EQ(shown(words), live(router, words)) << options;
    }
}

TEST_P(round_trip, of_classic_pcap_has_the_frames_and_their_times) {
    const simulator original({case_text(sample, GetParam())});
    live(original, {"--pcap-file", "--ofile=" + capture});
    // No room for: directions, records without octets, events and SAP, VPI and VCI, marks of cells, sequence numbers,
    // the two octets in front of a tunnel's frame.
    std::erase_if(sample.records, [](const auto& record) { return record.data.empty(); });
    std::uint32_t sequence = 0;
    for (cases::case_record& record : sample.records) {
        record.flags = 0;
        record.info = 0;
        record.sequence = ++sequence;
        if (sample.channel_type == capture::CHANNEL_TUNNEL) {
            std::ranges::copy(std::array<std::uint8_t, 2>{0x00, 0x21}, record.data.begin());
        }
    }
    const simulator reduced({case_text(sample, GetParam())});
    for (const std::string& options : sample.options) {
        const std::vector<std::string> words = words_of(options);
        EXPECT_EQ(shown(joined(words, {"--type", std::to_string(sample.channel_type)})), live(reduced, words))
            << options;
    }
}

/// What stands behind the lines that name the interface.
std::string shown_of(const std::string& text, const std::string& name) {
    std::istringstream lines(text);
    std::string shown;
    bool is_of = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("=== ")) {
            is_of = line.starts_with("=== " + name + ": ");
        } else if (is_of) {
            shown += line + "\n";
        }
    }
    return shown;
}

TEST(sample_captures, of_two_interfaces_shows_what_the_cases_of_both_show) {
    const std::string cases = std::string(SAMPLES_DIRECTORY) + "/../tools/docs/dial-in/";
    std::string line;
    std::string channel;
    ASSERT_TRUE(read_file(cases + "d-channel.case", line) && read_file(cases + "b-channel.case", channel));
    const simulator router({line, channel});
    const outcome got =
        run({IFWATCH_READ_PROGRAM, {"-2", "-3", "-p", "-i", SAMPLES_DIRECTORY + std::string("/dial-in.pcapng")}});
    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_EQ(shown_of(got.output, "ifwatch-2100"), router.watch({"-2", "-3"}, {"2100"}).output);
    EXPECT_EQ(shown_of(got.output, "ifwatch-2101"), router.watch({"-p", "-i"}, {"2101"}).output);
}

TEST(sample_captures, show_what_their_cases_show) {
    const std::string samples = std::string(SAMPLES_DIRECTORY) + "/";
    const std::vector<std::pair<std::string, std::vector<std::string>>> captures = {
        {"isdn-call.pcapng", {"-2", "-3"}}, {"lan-session.pcap", {"-2", "-i", "--sent", "02:00:01:01:02:03"}}};
    for (const auto& [file, options] : captures) {
        std::string text;
        ASSERT_TRUE(read_file(samples + file.substr(0, file.find('.')) + ".case", text));
        const simulator router({text});
        const std::vector<std::string> decoders = {options[0], options[1]};
        const outcome live = router.watch(decoders, {file.starts_with("isdn") ? "2100" : "1000"});
        EXPECT_EQ(live.status, 0) << live.errors;
        EXPECT_EQ(run({IFWATCH_READ_PROGRAM, joined(options, {samples + file})}).output, live.output) << file;
    }
}

INSTANTIATE_TEST_SUITE_P(samples, round_trip, testing::ValuesIn(all_samples()), [](const auto& sample) {
    std::string name = sample.param;
    std::ranges::replace(name, '-', '_');
    return name;
});

}  // namespace
}  // namespace ifwatch::test
