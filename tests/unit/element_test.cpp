#include "trace/element.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include "base/byte_order.h"
#include "support/octet_pipe.h"

namespace ifwatch {
namespace {

struct element_read {
    const char* error;
    std::uint32_t header;
    std::array<std::uint8_t, 100> data{};
};

element_read read_one(const std::vector<std::uint8_t>& stream) {
    const octet_pipe pipe(stream);
    element_read result{};
    result.header = 0xAAAAAAAA;
    result.error = read_element(pipe.reader(), result.header, result.data);
    return result;
}

std::vector<std::uint8_t> element_of(std::uint8_t type, std::uint8_t length) {
    std::vector<std::uint8_t> stream(4U + length, 0x5A);
    store_be32(stream.data(), element_header(type, length));
    return stream;
}

TEST(read_element, end_element) {
    const element_read got = read_one({0, 0, 0, 0});
    EXPECT_EQ(got.error, nullptr);
    EXPECT_EQ(got.header, 0U);
}

TEST(read_element, data_stand_at_the_start_of_the_buffer) {
    const element_read got = read_one({0, 0, 2, 7, 0x12, 0x34, 0x56});
    EXPECT_EQ(got.error, nullptr);
    EXPECT_EQ(got.header, 0x00000207U);
    EXPECT_EQ(element_type_of(got.header), ELEMENT_VCI);
    EXPECT_EQ(got.data[0], 0x12);
    EXPECT_EQ(got.data[1], 0x34);
    EXPECT_EQ(got.data[2], 0) << "the octet behind the element stays on the stream";
}

TEST(read_element, an_open_length_has_no_data) {
    const element_read got = read_one({0xFF, 0xFF, 0xFF, 5, 'x'});
    EXPECT_EQ(got.error, nullptr);
    EXPECT_EQ(got.header, 0xFFFFFF05U);
    EXPECT_EQ(got.data[0], 0);
    EXPECT_EQ(element_data_length(got.header), 0U);
}

TEST(read_element, ninety_nine_octets_fit_and_a_hundred_do_not) {
    EXPECT_EQ(read_one(element_of(5, 99)).error, nullptr);
    EXPECT_EQ(read_one(element_of(5, 99)).data[98], 0x5A);
    const element_read over = read_one(element_of(5, 100));
    EXPECT_STREQ(over.error, "read buffer overflow");
    EXPECT_EQ(over.header, 0x00006405U);
    EXPECT_EQ(over.data[0], 0) << "the data are left on the stream";
}

TEST(read_element, without_data_needs_no_buffer) {
    const octet_pipe pipe({0, 0, 0, 5});
    std::uint32_t header = 0;
    EXPECT_EQ(read_element(pipe.reader(), header, {}), nullptr);
    EXPECT_EQ(header, 5U);
}

TEST(read_element, stream_ends_in_the_header) {
    for (const auto& stream : {std::vector<std::uint8_t>{}, {0}, {0, 0}, {0, 0, 1}}) {
        const element_read got = read_one(stream);
        EXPECT_STREQ(got.error, "missing elem header data");
        EXPECT_EQ(got.header, 0U);
    }
}

TEST(read_element, stream_ends_in_the_data) {
    const element_read got = read_one({0, 0, 2, 1, 6});
    EXPECT_STREQ(got.error, "missing elem data");
    EXPECT_EQ(got.header, 0x00000201U);
}

TEST(read_n, says_what_happened) {
    std::array<std::uint8_t, 4> buffer{};
    const octet_pipe pipe({1, 2, 3});
    EXPECT_EQ(read_n(pipe.reader(), buffer.data(), 2), 2);
    EXPECT_EQ(read_n(pipe.reader(), buffer.data(), 0), 0);
    EXPECT_EQ(read_n(pipe.reader(), buffer.data(), 2), 0) << "the stream ends after one octet more";
    EXPECT_EQ(read_n(-1, buffer.data(), 2), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(read_n, joins_short_reads) {
    octet_pipe pipe;
    std::thread writer([&pipe] {
        for (const std::uint8_t octet : std::to_array<std::uint8_t>({1, 2, 3})) {
            ASSERT_EQ(write(pipe.writer(), &octet, 1), 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    std::array<std::uint8_t, 3> buffer{};
    EXPECT_EQ(read_n(pipe.reader(), buffer.data(), 3), 3);
    writer.join();
    EXPECT_EQ(buffer, (std::array<std::uint8_t, 3>{1, 2, 3}));
}

TEST(write_all, a_peer_that_has_gone_raises_no_signal) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    close(ends[1]);
    const std::array<std::uint8_t, 3> message{1, 2, 3};
    EXPECT_FALSE(write_all(ends[0], message));
    EXPECT_EQ(errno, EPIPE);
    close(ends[0]);
}

TEST(byte_order, swaps) {
    EXPECT_EQ(swap16(0x1234), 0x3412);
    EXPECT_EQ(swap32(0x12345678), 0x78563412U);
    std::array<std::uint8_t, 4> word{};
    store_be32(word.data(), 0x01020304);
    EXPECT_EQ(word, (std::array<std::uint8_t, 4>{1, 2, 3, 4}));
    EXPECT_EQ(load_be32(word.data()), 0x01020304U);
    EXPECT_EQ(load_le32(word.data()), 0x04030201U);
    EXPECT_EQ(load_be16(word.data()), 0x0102);
}

}  // namespace
}  // namespace ifwatch
