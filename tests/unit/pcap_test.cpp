#include "trace/pcap.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "display/display_context.h"
#include "support/octet_pipe.h"

namespace ifwatch {
namespace {

// The header is in the order of the machine.
template <class Integer>
Integer number(const std::string& octets, std::size_t at) {
    Integer value = 0;
    std::memcpy(&value, octets.data() + at, sizeof value);
    return value;
}

std::uint32_t word(const std::string& octets, std::size_t at) { return number<std::uint32_t>(octets, at); }

std::uint32_t link_type(int channel_type, std::int32_t linktype_override = -1) {
    display_context context;
    context.channel_type = channel_type;
    octet_pipe pipe;
    EXPECT_EQ(write_pcap_header(pipe.writer(), context, linktype_override), 24);
    const std::string header = pipe.drain();
    EXPECT_EQ(header.size(), 24U);
    EXPECT_EQ(word(header, 0), 0xA1B2C3D4U);
    EXPECT_EQ(number<std::uint16_t>(header, 4), 2U) << "version 2.4 as two 16-bit words";
    EXPECT_EQ(number<std::uint16_t>(header, 6), 4U);
    EXPECT_EQ(word(header, 8), 0U);
    EXPECT_EQ(word(header, 12), 0U);
    EXPECT_EQ(word(header, 16), 65535U);
    return word(header, 20);
}

TEST(pcap_header, link_type_of_every_interface_type) {
    constexpr int WANTED[][2] = {{-2, 0}, {0, 0},    {169, 0}, {94, 0},    {1, 9},  {23, 9},   {2, 11},
                                 {3, 11}, {4, 1},    {6, 1},   {7, 1},     {5, 12}, {131, 12}, {8, 6},
                                 {9, 6},  {32, 107}, {16, 50}, {118, 104}, {-1, 0}, {200, 1}};
    for (const auto& [channel_type, wanted] : WANTED) {
        EXPECT_EQ(link_type(channel_type), static_cast<std::uint32_t>(wanted)) << "channel type " << channel_type;
    }
}

TEST(pcap_header, override_wins_from_zero_on) {
    EXPECT_EQ(link_type(6, 105), 105U);
    EXPECT_EQ(link_type(6, 0), 0U);
    EXPECT_EQ(link_type(6, -1), 1U);
}

struct one_record {
    std::array<std::uint8_t, 40> data{};
    record_header header{.timestamp_ms = 61234, .record_flags = 0, .channel_info = 0, .sequence = 1};
    display_context context;

    one_record(int channel_type, int captured, std::uint32_t original) {
        for (std::size_t i = 0; i < data.size(); ++i) {
            data[i] = static_cast<std::uint8_t>(i);
        }
        context.channel_type = channel_type;
        context.header = &header;
        context.payload = octets_of(std::span(data).first(static_cast<std::size_t>(captured)));
        context.original_length = original;
    }

    std::string written() {
        octet_pipe pipe;
        EXPECT_EQ(write_pcap_record(pipe.writer(), context), 0);
        return pipe.drain();
    }
};

TEST(pcap_record, header_and_data) {
    one_record lan(6, 40, 1500);
    const std::string octets = lan.written();
    ASSERT_EQ(octets.size(), 16U + 40U);
    EXPECT_EQ(word(octets, 0), 61U);
    EXPECT_EQ(word(octets, 4), 234000U);
    EXPECT_EQ(word(octets, 8), 40U);
    EXPECT_EQ(word(octets, 12), 1500U);
    EXPECT_EQ(octets[16], 0);
    EXPECT_EQ(octets[55], 39);
}

TEST(pcap_record, a_tunnel_record_loses_two_octets_for_good) {
    one_record tunnel(131, 40, 40);
    const std::string octets = tunnel.written();
    ASSERT_EQ(octets.size(), 16U + 38U);
    EXPECT_EQ(word(octets, 8), 38U);
    EXPECT_EQ(word(octets, 12), 38U);
    EXPECT_EQ(octets[16], 2);
    EXPECT_EQ(tunnel.context.payload.length, 38);
    EXPECT_EQ(tunnel.context.original_length, 38U);
    EXPECT_EQ(tunnel.context.payload[0], 0) << "a display that follows starts at the first octet";
}

TEST(pcap_record, a_tunnel_record_of_one_octet_keeps_it) {
    EXPECT_EQ(one_record(131, 1, 40).written().size(), 17U);
    EXPECT_EQ(one_record(131, 40, 1).written().size(), 56U);
    EXPECT_EQ(one_record(131, 2, 2).written(), "");
}

TEST(pcap_record, without_data_nothing_is_written) { EXPECT_EQ(one_record(6, 0, 0).written(), ""); }

TEST(pcap, a_write_that_fails_is_told_and_closes_the_sink) {
    one_record lan(6, 40, 40);
    testing::internal::CaptureStderr();
    EXPECT_EQ(write_pcap_header(-1, lan.context, -1), -1);
    EXPECT_EQ(write_pcap_record(-1, lan.context), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ERROR write pcap header ret : -1\nwrite pcap file header: Bad file descriptor\n"
              "ERROR write pcap datahdr ret : -1\nwrite pcap data header: Bad file descriptor\n");
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(write_pcap_record(full, lan.context), -1);
    EXPECT_EQ(write_pcap_record(full, lan.context), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ERROR write pcap datahdr ret : -1\nwrite pcap data header: No space left on device\n"
              "ERROR write pcap datahdr ret : -1\nwrite pcap data header: Bad file descriptor\n");
}

}  // namespace
}  // namespace ifwatch
