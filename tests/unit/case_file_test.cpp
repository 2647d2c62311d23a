#include "cases/case_file.h"

#include <gtest/gtest.h>

#include "support/temp_directory.h"

namespace ifwatch::cases {
namespace {

using octet_vector = std::vector<std::uint8_t>;

/// Parses a text that must be right.
trace_case parsed(const std::string& text) {
    trace_case result;
    std::string error;
    EXPECT_TRUE(parse_case(text, result, error)) << error;
    return result;
}

/// The error of a text that must be wrong.
std::string error_of(const std::string& text) {
    trace_case result;
    std::string error;
    EXPECT_FALSE(parse_case(text, result, error)) << text;
    return error;
}

/// The data of one record with these lines of octets.
octet_vector data_of(const std::string& lines) {
    const trace_case result = parsed("channel 6\nrecord R 0\n" + lines);
    return result.records.empty() ? octet_vector{} : result.records.front().data;
}

TEST(parse_case, header_lines) {
    const trace_case result = parsed(
        "# A comment line\n"
        "channel 131 # a tunnel\n"
        "\n"
        "interface 100001\n"
        "name  Branch office  # and its name\n"
        "options -2 -3 -h\n"
        "options\n"
        "options -I !1.1.1.1 # filtered\n");
    EXPECT_EQ(result.channel_type, 131);
    EXPECT_EQ(result.interface_index, 100001U);
    EXPECT_EQ(result.name, "Branch office");
    EXPECT_EQ(result.options, (std::vector<std::string>{"-2 -3 -h", "", "-I !1.1.1.1"}));
    EXPECT_TRUE(result.records.empty());
}

TEST(parse_case, channel_types_may_be_negative_or_hexadecimal) {
    EXPECT_EQ(parsed("channel -2").channel_type, -2);
    EXPECT_EQ(parsed("channel 0x83").channel_type, 131);
    EXPECT_FALSE(parsed("channel 0").interface_index.has_value());
}

TEST(parse_case, records_count_on_from_one) {
    const trace_case result = parsed("channel 0\nrecord R 1000\n 01 02\nrecord X 1250\nrecord R 1300\n");
    ASSERT_EQ(result.records.size(), 3U);
    EXPECT_EQ(result.records[0].timestamp_ms, 1000U);
    EXPECT_EQ(result.records[0].flags, 0U);
    EXPECT_EQ(result.records[0].sequence, 1U);
    EXPECT_EQ(result.records[0].info, 0U);
    EXPECT_EQ(result.records[0].original_length, 2);
    EXPECT_EQ(result.records[1].flags, 1U);
    EXPECT_EQ(result.records[1].sequence, 2U);
    EXPECT_EQ(result.records[1].original_length, 0);
    EXPECT_EQ(result.records[2].sequence, 3U);
}

TEST(parse_case, record_keys) {
    const trace_case result = parsed(
        "channel 3\n"
        "record X 4294967295 sequence=7 flags=0x81 info=0x00002300 original=64\n"
        "  41 42\n"
        "  43\n"
        "record R 0 original=0\n"
        "  00*3\n");
    ASSERT_EQ(result.records.size(), 2U);
    EXPECT_EQ(result.records[0].timestamp_ms, 0xFFFFFFFFU);
    EXPECT_EQ(result.records[0].sequence, 7U);
    EXPECT_EQ(result.records[0].flags, 0x81U);
    EXPECT_EQ(result.records[0].info, 0x2300U);
    EXPECT_EQ(result.records[0].original_length, 64);
    EXPECT_EQ(result.records[0].data.size(), 3U);
    EXPECT_EQ(result.records[1].sequence, 8U) << "one more than the record before";
    EXPECT_EQ(result.records[1].original_length, 0);
}

TEST(parse_case, sequence_numbers_wrap) {
    EXPECT_EQ(parsed("channel 0\nrecord R 0 sequence=0xFFFFFFFF\nrecord R 0\n").records[1].sequence, 0U);
}

TEST(parse_case, octets) {
    EXPECT_EQ(data_of("  02 01 7F\n"), (octet_vector{0x02, 0x01, 0x7F}));
    EXPECT_EQ(data_of("\t0201 7fAb\n  C0\n"), (octet_vector{0x02, 0x01, 0x7F, 0xAB, 0xC0}));
    EXPECT_EQ(data_of("  00*4 FF*1 AA*0\n"), (octet_vector{0, 0, 0, 0, 0xFF}));
    EXPECT_EQ(data_of("  \"AB\" 00\"C\"01\n"), (octet_vector{'A', 'B', 0, 'C', 1}));
    EXPECT_EQ(data_of(R"(  "a\"b\\" # comment)"), (octet_vector{'a', '"', 'b', '\\'}));
    EXPECT_EQ(data_of("  \"#1\" 02 # \"3\n"), (octet_vector{'#', '1', 2}));
    EXPECT_EQ(data_of("  \"\"\n"), octet_vector{});
    EXPECT_EQ(data_of("  01\r\n  02\r\n"), (octet_vector{1, 2})) << "line ends of other systems";
}

TEST(parse_case, a_record_holds_what_its_length_field_can_tell) {
    EXPECT_EQ(data_of("  00*65513\n").size(), 65513U);
    EXPECT_EQ(error_of("channel 6\nrecord R 0\n  00*65513\n  00\n"), "4: a record holds at most 65513 octets");
    EXPECT_EQ(error_of("channel 6\nrecord R 0\n  00*4294967295\n"), "3: a record holds at most 65513 octets");
}

struct mistake {
    const char* text;
    const char* error;
};

class mistakes : public testing::TestWithParam<mistake> {};

TEST_P(mistakes, are_named_with_their_line) { EXPECT_EQ(error_of(GetParam().text), GetParam().error); }

constexpr mistake MISTAKES[] = {
    {"", "1: the channel line is missing"},
    {"# nothing\n\n", "2: the channel line is missing"},
    {"channel\n", "1: channel takes the code of a channel type, not ''"},
    {"channel 6 7\n", "1: channel takes the code of a channel type, not '6 7'"},
    {"channel 65536\n", "1: channel takes the code of a channel type, not '65536'"},
    {"channel LAN\n", "1: channel takes the code of a channel type, not 'LAN'"},
    {"channel 6\nchannel 6\n", "2: a second channel line"},
    {"interface -1\n", "1: interface takes an interface index, not '-1'"},
    {"interface 1\ninterface 1\n", "2: a second interface line"},
    {"name\n", "1: name takes a text"},
    {"name a\nname b\n", "2: a second name line"},
    {"recrod R 1\n", "1: unknown word 'recrod'"},
    {"channel 6\n\n 01\n", "3: octets before the first record"},
    {"record\n", "1: record takes R (received) or X (sent), not ''"},
    {"record r 1\n", "1: record takes R (received) or X (sent), not 'r'"},
    {"record R\n", "1: record takes a time stamp in ms, not ''"},
    {"record R 4294967296\n", "1: record takes a time stamp in ms, not '4294967296'"},
    {"record R 1s\n", "1: record takes a time stamp in ms, not '1s'"},
    {"record R 1 length=3\n", "1: unknown record key 'length=3'"},
    {"record R 1 flags\n", "1: flags takes a number, not ''"},
    {"record R 1 flags=\n", "1: flags takes a number, not ''"},
    {"record R 1 info=0x\n", "1: info takes a number, not '0x'"},
    {"record R 1 original=65536\n", "1: original takes a number, not '65536'"},
    {"record R 1\n 0\n", "2: '0' has an odd number of digits"},
    {"record R 1\n 00 0G\n", "2: '0G' is not hexadecimal"},
    {"record R 1\n 0001*2\n", "2: '0001*2' is not an octet and how often it is repeated"},
    {"record R 1\n 00*\n", "2: '00*' is not an octet and how often it is repeated"},
    {"record R 1\n -1*2\n", "2: '-1*2' is not an octet and how often it is repeated"},
    {"record R 1\n \"abc\n", "2: the text has no closing quote"},
    {"record R 1\n \"abc\\\n", "2: a backslash in a text stands before \" or \\ only"},
    {"record R 1\n \"a\\n\"\n", "2: a backslash in a text stands before \" or \\ only"},
};

INSTANTIATE_TEST_SUITE_P(case_file, mistakes, testing::ValuesIn(MISTAKES));

TEST(read_case_file, errors_name_the_file) {
    const test::temp_directory directory;
    const std::string path = directory.write("bad.case", "channel 6\nrecrod R 1\n");
    trace_case result;
    std::string error;
    EXPECT_FALSE(read_case_file(path, result, error));
    EXPECT_EQ(error, path + ":2: unknown word 'recrod'");
    EXPECT_FALSE(read_case_file(directory.file("none.case"), result, error));
    EXPECT_EQ(error, directory.file("none.case") + ": No such file or directory");
    EXPECT_FALSE(read_case_file(directory.path(), result, error));
    EXPECT_EQ(error, directory.path() + ": Is a directory");
}

TEST(read_case_file, keeps_the_path) {
    const test::temp_directory directory;
    trace_case result;
    std::string error;
    ASSERT_TRUE(read_case_file(directory.write("lan.case", "channel 6\n"), result, error)) << error;
    EXPECT_EQ(result.path, directory.file("lan.case"));
    EXPECT_EQ(result.channel_type, 6);
}

}  // namespace
}  // namespace ifwatch::cases
