#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "display/display_context.h"
#include "display/mode_flags.h"
#include "support/captured_output.h"
#include "support/octet_pipe.h"
#include "support/replaced_descriptor.h"
#include "trace/trace_file.h"

namespace ifwatch {
namespace {

using stream = std::vector<std::uint8_t>;

stream record(std::uint16_t record_length, const stream& data, std::uint8_t proto_length = 16) {
    stream octets{static_cast<std::uint8_t>(record_length >> 8),
                  static_cast<std::uint8_t>(record_length),
                  0,
                  proto_length,
                  0,
                  0,
                  0x04,
                  0xD2,  // 1234 ms
                  0,
                  0,
                  0,
                  1,  // sent
                  0,
                  0,
                  0,
                  0,
                  0,
                  0,
                  0,
                  1};
    if (record_length > 20) {
        octets.push_back(0);
        octets.push_back(static_cast<std::uint8_t>(data.size()));
    }
    octets.insert(octets.end(), data.begin(), data.end());
    return octets;
}

stream join(stream front, const stream& behind) {
    front.insert(front.end(), behind.begin(), behind.end());
    return front;
}

struct outcome {
    int status;
    std::string output;
    std::string errors;
    int channel_type;
};

class trace_file : public testing::Test {
protected:
    trace_file() {
        char name[] = "/tmp/ifwatch-trace-XXXXXX";
        close(mkstemp(name));
        name_ = name;
    }
    ~trace_file() override { unlink(name_.c_str()); }
    trace_file(const trace_file&) = delete;
    trace_file& operator=(const trace_file&) = delete;
    trace_file(trace_file&&) = delete;
    trace_file& operator=(trace_file&&) = delete;

    outcome read(const stream& octets, std::uint32_t mode_flags = MODE_HEX) {
        std::ofstream(name_, std::ios::binary)
            .write(reinterpret_cast<const char*>(octets.data()), static_cast<std::streamsize>(octets.size()));
        display_context context;
        context.mode_flags = mode_flags;
        captured_output output;
        testing::internal::CaptureStderr();
        const int status = read_trace_file(name_.c_str(), trace_target{}, context);
        return {status, output.take(), testing::internal::GetCapturedStderr(), context.channel_type};
    }

    std::string name_;
};

const std::string REPORT = "Ifc:0 (Chan:0 Unit:0 Slot:0) Type: 0 (ISDN D-channel)\n trace start\n";

TEST_F(trace_file, shows_its_records) {
    const outcome got = read(join({0}, record(25, {2, 1, 0x7F})), MODE_LAYER2_ASKED);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output,
              "000001.234 X #00000001 DATA[0003]   \n"
              "\tSAPI=00\tC/R=1\tTEI=00\tSABME P/F=1\n\n");
    EXPECT_EQ(got.errors, REPORT + "msg1 too short!\n");
}

TEST_F(trace_file, takes_the_channel_type_from_its_first_octet) {
    EXPECT_EQ(read({6}).channel_type, 6);
    EXPECT_EQ(read({0xFE}).channel_type, -2);
}

TEST_F(trace_file, without_the_acknowledge_octet) {
    const outcome got = read({});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "Ifc:0 (Chan:0 Unit:0 Slot:0) Type: -1 (not-found)\n negative trace acknowledge\n");
}

TEST_F(trace_file, a_record_may_end_behind_its_protocol_part) {
    const outcome got = read(join({6}, record(20, {})), MODE_HEX | MODE_IP);
    EXPECT_EQ(got.output, "000001.234 X DATA[0000]   \n\n!!! Warning: empty DATA message !!!\n");
}

TEST_F(trace_file, names_what_is_cut_off) {
    const stream whole = join({0}, record(25, {2, 1, 0x7F}));
    const auto cut = [&](std::size_t length) {
        return read(stream(whole.begin(), whole.begin() + static_cast<long>(length))).errors;
    };
    EXPECT_EQ(cut(2), REPORT + "msg1 too short!\n");
    EXPECT_EQ(cut(4), REPORT + "proto len too short!\n");
    EXPECT_EQ(cut(20), REPORT + "proto part too short!\n");
    EXPECT_EQ(cut(22), REPORT + "data len too short!\n");
    EXPECT_EQ(cut(25), REPORT + "data too short! (0 instead of 3)\n");
}

TEST_F(trace_file, refuses_another_protocol_part) {
    EXPECT_EQ(read(join({0}, record(25, {1, 2, 3}, 12))).errors,
              REPORT + "cannot handle proto msg part, len differs 12!\n");
}

TEST_F(trace_file, refuses_a_record_that_cannot_be_held) {
    EXPECT_EQ(read(join({0}, record(21, {}))).errors, REPORT + "data too short! (0 instead of -1)\n");
    EXPECT_EQ(read(join({0}, record(8192 + 23, {}))).errors, REPORT + "data too short! (0 instead of 8193)\n");
}

TEST_F(trace_file, holds_a_record_of_the_greatest_length) {
    const outcome got = read(join({0}, record(22 + 8192, stream(8192, 0xA1))));
    EXPECT_EQ(got.output.substr(0, 28), "000001.234 X #00000001 DATA[");
    EXPECT_EQ(got.errors, REPORT + "msg1 too short!\n");
}

TEST_F(trace_file, may_be_the_standard_input) {
    const octet_pipe pipe(join({0}, record(25, {2, 1, 0x7F})));
    const test::replaced_descriptor input(STDIN_FILENO, pipe.reader());
    display_context context;
    context.mode_flags = MODE_LAYER2_ASKED;
    captured_output output;
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_trace_file("-", trace_target{}, context), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), REPORT + "msg1 too short!\n");
    EXPECT_EQ(output.take(),
              "000001.234 X #00000001 DATA[0003]   \n"
              "\tSAPI=00\tC/R=1\tTEI=00\tSABME P/F=1\n\n");
    EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0) << "left open";
}

int open_descriptors() {
    int count = 0;
    for (int fd = 0; fd < 256; ++fd) {
        count += fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
    }
    return count;
}

TEST_F(trace_file, is_closed_at_its_end) {
    const int before = open_descriptors();
    EXPECT_EQ(read({6}).status, 0);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(trace_file, ends_with_an_output_that_fails) {
    const octet_pipe pipe(join(join({0}, record(25, {2, 1, 0x7F})), record(25, {2, 1, 0x7F})));
    const test::replaced_descriptor input(STDIN_FILENO, pipe.reader());
    display_context context;
    set_output_writer([](const char*, std::size_t) {
        errno = ENOSPC;
        return -1L;
    });
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_trace_file("-", trace_target{}, context), 1);
    set_output_writer(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), REPORT + "ERROR write (No space left on device)\n");
}

TEST_F(trace_file, that_cannot_be_opened_ends_the_process) {
    display_context context;
    EXPECT_EXIT((void)read_trace_file("/nonexistent/trace", trace_target{}, context), testing::ExitedWithCode(1),
                "^ERROR: Cannot open trace file /nonexistent/trace \\(No such file or directory\\)\n$");
}

}  // namespace
}  // namespace ifwatch
