#include "client/options.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "base/verbose.h"
#include "display/mode_flags.h"

namespace ifwatch {
namespace {

/// An argument vector that may be written to, as the one of a process.
class argument_vector {
public:
    explicit argument_vector(std::vector<std::string> arguments) : texts_(std::move(arguments)) {
        texts_.insert(texts_.begin(), "ifwatch");
        for (std::string& text : texts_) {
            pointers_.push_back(text.data());
        }
        pointers_.push_back(nullptr);
    }

    [[nodiscard]] int count() const { return static_cast<int>(pointers_.size()) - 1; }
    [[nodiscard]] char** data() { return pointers_.data(); }
    /// The text of an argument in the order of the command line, terminating zeros included.
    [[nodiscard]] const std::string& text(std::size_t index) const { return texts_[index]; }

private:
    std::vector<std::string> texts_;
    std::vector<char*> pointers_;
};

class command_line : public testing::Test {
public:
    void SetUp() override {
        verbose_level = 0;
        opterr = 1;  // the options of the other programs are tested in the same process, and have messages of their own
    }
    void TearDown() override { verbose_level = 0; }

    /// Parses one command line; the messages are kept in `messages`.
    command parse(const std::vector<std::string>& arguments) {
        vectors.emplace_back(arguments);
        testing::internal::CaptureStderr();
        const command asked = parse_options(vectors.back().count(), vectors.back().data(), settings);
        messages = testing::internal::GetCapturedStderr();
        return asked;
    }

    /// Parses options in front of a router and an interface.
    void parse_for_trace(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"router", "1000"});
        EXPECT_EQ(parse(arguments), command::TRACE);
        EXPECT_EQ(messages, "");
    }

    [[nodiscard]] std::vector<std::uint8_t> addinfo() const {
        return {settings.addinfo.data.begin(), settings.addinfo.data.begin() + settings.addinfo.used};
    }

    std::list<argument_vector> vectors;  // the settings point into them
    options settings;
    std::string messages;
};

TEST_F(command_line, defaults) {
    parse_for_trace({});
    EXPECT_EQ(settings.mode_flags, 0U);
    EXPECT_EQ(verbose_level, 0);
    EXPECT_EQ(settings.tei_filter, -1);
    EXPECT_EQ(settings.cref_filter, -1);
    EXPECT_EQ(settings.port, 7000);
    EXPECT_EQ(settings.version, 3);
    EXPECT_EQ(settings.target.version, 3);
    EXPECT_EQ(settings.target.capture_length, -1);
    EXPECT_EQ(settings.password.text(), nullptr);
    EXPECT_EQ(settings.sink, SINK_NONE);
    EXPECT_FALSE(settings.start_analyser);
    EXPECT_FALSE(settings.print);
    EXPECT_FALSE(settings.list_mode);
    EXPECT_EQ(settings.output_name, nullptr);
    EXPECT_EQ(settings.pcap_linktype, -1);
    EXPECT_EQ(settings.trace_file, nullptr);
    EXPECT_EQ(settings.atm.vpi, -1);
    EXPECT_EQ(settings.atm.vci, -1);
    EXPECT_EQ(settings.atm.flags, 0);
    EXPECT_EQ(addinfo(), (std::vector<std::uint8_t>{0, 0, 0, 3, 0, 0, 0, 0}));
}

TEST_F(command_line, mode_flags_have_their_bits) {
    const struct {
        const char* option;
        std::uint32_t bits;
    } rows[] = {{"-h", 0x1},   {"-!", 0x40},   {"-2", 0x01000002}, {"-3", 0x02000010},
                {"-F", 0x80},  {"-A", 0x4080}, {"-D", 0x80000000}, {"-e", 0x400},
                {"-p", 0x100}, {"-a", 0x200},  {"-f", 0x1000},     {"-i", 0x8},
                {"-N", 0x800}, {"-t", 0x4},    {"-x", 0x61},       {"-X", 0x2000}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.option);
        settings.mode_flags = 0;
        parse_for_trace({row.option});
        EXPECT_EQ(settings.mode_flags, row.bits);
    }
}

TEST_F(command_line, letters_may_stand_together) {
    parse_for_trace({"-h23piN"});
    EXPECT_EQ(settings.mode_flags, 0x0300091BU);
}

TEST_F(command_line, hexadecimal_output_moves_to_asynchronous_frames) {
    parse_for_trace({"-a", "-h"});
    EXPECT_EQ(settings.mode_flags, 0x10200U);
}

TEST_F(command_line, full_hexadecimal_output_moves_too) {
    parse_for_trace({"-!", "-h", "-a"});
    EXPECT_EQ(settings.mode_flags, 0x10200U);
}

TEST_F(command_line, full_length_alone_does_not_move) {
    parse_for_trace({"-a", "-!"});
    EXPECT_EQ(settings.mode_flags, 0x240U);
}

TEST_F(command_line, raw_mode_brings_hexadecimal_output_back) {
    parse_for_trace({"-x", "-a", "-h"});
    EXPECT_EQ(settings.mode_flags, 0x10261U);
}

TEST_F(command_line, raw_mode_alone_is_no_hexadecimal_output_of_asynchronous_frames) {
    parse_for_trace({"-x", "-a"});
    EXPECT_EQ(settings.mode_flags, 0x261U);
}

TEST_F(command_line, filters_of_the_d_channel_mark_that_they_are_set) {
    parse_for_trace({"-T", "64", "-c5"});
    EXPECT_EQ(settings.mode_flags, MODE_TEI_FILTER | MODE_CREF_FILTER);
    EXPECT_EQ(settings.mode_flags, 0x0C000000U);
    EXPECT_EQ(settings.tei_filter, 64);
    EXPECT_EQ(settings.cref_filter, 5);
}

TEST_F(command_line, each_v_raises_the_verbosity) {
    parse_for_trace({"-v"});
    EXPECT_EQ(verbose_level, 1);
    parse_for_trace({"-vv", "-v"});
    EXPECT_EQ(verbose_level, 4);
}

TEST_F(command_line, numbers_of_the_session) {
    parse_for_trace({"-V", "2", "-P7001", "-r", "68", "-n", "12"});
    EXPECT_EQ(settings.version, 2);
    EXPECT_EQ(settings.target.version, 3);
    EXPECT_EQ(settings.port, 7001);
    EXPECT_EQ(settings.target.capture_length, 68);
}

TEST_F(command_line, numbers_are_the_leading_digits) {
    parse_for_trace({"-V", "2nd", "-T", "junk", "-c", "  -7,", "-r", "+12", "-P", ""});
    EXPECT_EQ(settings.version, 2);
    EXPECT_EQ(settings.tei_filter, 0);
    EXPECT_EQ(settings.cref_filter, -7);
    EXPECT_EQ(settings.target.capture_length, 12);
    EXPECT_EQ(settings.port, 0);
}

TEST_F(command_line, numbers_that_do_not_fit_keep_their_low_bits) {
    parse_for_trace({"-T", "4294967297", "-c", "2147483648", "-P", "70000"});
    EXPECT_EQ(settings.tei_filter, 1);
    EXPECT_EQ(settings.cref_filter, INT32_MIN);
    EXPECT_EQ(settings.port, 4464);
    parse_for_trace({"-r", "99999999999999999999999999", "-P-1"});
    EXPECT_EQ(settings.target.capture_length, -1);
    EXPECT_EQ(settings.port, 65535);
}

TEST_F(command_line, filters_are_sent_in_their_order) {
    parse_for_trace({"-I", "a", "-B", "b", "-o", "--src=c", "--dst", "d", "--llc"});
    const std::vector<std::uint8_t> expected{0xFF, 0xFF, 0xFF, 6, 0, 0, 1,   'I', 'a', 0, 0, 1,   'B', 'b', 0,
                                             0,    0,    'o',  0, 0, 1, 's', 'c', 0,   0, 1, 'd', 'd', 0,   0,
                                             0,    'l',  0,    0, 0, 0, 0,   0,   0,   3, 0, 0,   0,   0};
    EXPECT_EQ(addinfo(), expected);
}

TEST_F(command_line, line_parameters) {
    parse_for_trace({"--vpi=8", "--vci=35", "-z"});
    EXPECT_EQ(settings.atm.vpi, 8);
    EXPECT_EQ(settings.atm.vci, 35);
    EXPECT_EQ(settings.atm.flags, 1);
    const std::vector<std::uint8_t> expected{0, 0, 2, 7, 0, 35, 0, 0, 1, 8, 8, 0, 0, 0, 9, 0, 0, 0, 3, 0, 0, 0, 0};
    EXPECT_EQ(addinfo(), expected);
}

TEST_F(command_line, a_named_pipe) {
    parse_for_trace({"--pcap-pipe"});
    EXPECT_EQ(settings.sink, 6);
    EXPECT_FALSE(settings.start_analyser);
}

TEST_F(command_line, the_analyser_reads_a_named_pipe) {
    parse_for_trace({"--ethereal"});
    EXPECT_EQ(settings.sink, 6);
    EXPECT_TRUE(settings.start_analyser);
}

TEST_F(command_line, a_plain_file) {
    parse_for_trace({"--pcap-file", "--pcap-linktype=105", "--ofile=x.pcap", "--print"});
    EXPECT_EQ(settings.sink, 7);
    EXPECT_EQ(settings.pcap_linktype, 105);
    EXPECT_STREQ(settings.output_name, "x.pcap");
    EXPECT_TRUE(settings.print);
}

TEST_F(command_line, the_last_sink_counts) {
    parse_for_trace({"--pcap-file", "--ethereal"});
    EXPECT_EQ(settings.sink, SINK_PIPE);
    parse_for_trace({"--ethereal", "--pcap-file"});
    EXPECT_EQ(settings.sink, SINK_FILE);
}

TEST_F(command_line, long_options_may_be_abbreviated) {
    parse_for_trace({"--pcap-l=1", "--of", "name", "--pw=x", "--pr", "--pcap-f", "--vp=3", "--l"});
    EXPECT_EQ(settings.pcap_linktype, 1);
    EXPECT_STREQ(settings.output_name, "name");
    EXPECT_STREQ(settings.password.text(), "x");
    EXPECT_TRUE(settings.print);
    EXPECT_EQ(settings.sink, SINK_FILE);
    EXPECT_EQ(settings.atm.vpi, 3);
    const std::vector<std::uint8_t> expected{0xFF, 0xFF, 0xFF, 6, 0, 0, 0, 'l', 0, 0, 0, 0, 0,
                                             0,    1,    8,    3, 0, 0, 0, 3,   0, 0, 0, 0};
    EXPECT_EQ(addinfo(), expected);
}

TEST_F(command_line, an_ambiguous_abbreviation_shows_the_usage) {
    EXPECT_EQ(parse({"--pcap", "router"}), command::SHOW_USAGE);
    EXPECT_NE(messages.find("ifwatch: option '--pcap' is ambiguous"), std::string::npos) << messages;
}

TEST_F(command_line, unknown_options_show_the_usage) {
    EXPECT_EQ(parse({"-y", "router"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "ifwatch: invalid option -- 'y'\n");
    EXPECT_EQ(parse({"--colour", "router"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "ifwatch: unrecognized option '--colour'\n");
    EXPECT_EQ(parse({"router", "-P"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "ifwatch: option requires an argument -- 'P'\n");
    EXPECT_EQ(parse({"--print=yes", "router"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "ifwatch: option '--print' doesn't allow an argument\n");
}

TEST_F(command_line, a_question_mark_shows_the_usage_without_a_complaint) {
    EXPECT_EQ(parse({"-?", "router"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "");
}

TEST_F(command_line, help_comes_at_once) {
    EXPECT_EQ(parse({"--help", "--colour"}), command::SHOW_HELP);
    EXPECT_EQ(messages, "");
    EXPECT_EQ(parse({"--colour", "--help"}), command::SHOW_USAGE);
}

TEST_F(command_line, a_router_alone_is_asked_for_its_interfaces) {
    EXPECT_EQ(parse({"router"}), command::TRACE);
    EXPECT_STREQ(settings.host, "router");
    EXPECT_TRUE(settings.list_mode);
    EXPECT_EQ(interface_index(settings.target), 0);
    EXPECT_EQ(addinfo(), (std::vector<std::uint8_t>{0, 0, 0, 11, 0, 0, 0, 0}));
}

TEST_F(command_line, an_old_router_alone_is_probed_for_its_channels) {
    for (const char* version : {"-V2", "-V1", "-V0", "-V-1"}) {
        EXPECT_EQ(parse({version, "router"}), command::CHANNEL_TEST) << version;
        EXPECT_STREQ(settings.host, "router");
        EXPECT_FALSE(settings.list_mode);
    }
}

TEST_F(command_line, a_router_of_a_later_version_lists_its_interfaces) {
    EXPECT_EQ(parse({"-V4", "router"}), command::TRACE);
    EXPECT_TRUE(settings.list_mode);
}

TEST_F(command_line, an_interface_index) {
    EXPECT_EQ(parse({"router", "212345"}), command::TRACE);
    EXPECT_EQ(settings.target.slot, 210);
    EXPECT_EQ(settings.target.unit, 23);
    EXPECT_EQ(settings.target.channel, 45);
    EXPECT_FALSE(settings.list_mode);
}

TEST_F(command_line, channel_unit_and_slot) {
    EXPECT_EQ(parse({"router", "0", "1", "2"}), command::TRACE);
    EXPECT_EQ(settings.target.slot, 2);
    EXPECT_EQ(settings.target.unit, 1);
    EXPECT_EQ(settings.target.channel, 0);
    EXPECT_EQ(interface_index(settings.target), 2100);
    EXPECT_EQ(parse({"router", "31", "99", "-12", "-h"}), command::SHOW_USAGE);  // -12 reads as options
    EXPECT_EQ(parse({"-h", "--", "router", "31", "99", "-12"}), command::TRACE);
    EXPECT_EQ(settings.target.slot, -12);
    EXPECT_EQ(settings.target.unit, 99);
    EXPECT_EQ(settings.target.channel, 31);
}

TEST_F(command_line, any_other_number_of_arguments_shows_the_usage) {
    EXPECT_EQ(parse({}), command::SHOW_USAGE);
    EXPECT_EQ(parse({"-h"}), command::SHOW_USAGE);
    EXPECT_EQ(parse({"router", "1", "2"}), command::SHOW_USAGE);
    EXPECT_EQ(parse({"router", "1", "2", "3", "4"}), command::SHOW_USAGE);
    EXPECT_EQ(parse({"-H", "router"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "");
}

TEST_F(command_line, an_empty_argument_vector_shows_the_usage) {
    char* none[] = {nullptr};
    EXPECT_EQ(parse_options(0, none, settings), command::SHOW_USAGE);
}

TEST_F(command_line, the_router_named_as_an_argument_wins) {
    EXPECT_EQ(parse({"-H", "other", "router", "5"}), command::TRACE);
    EXPECT_STREQ(settings.host, "router");
    EXPECT_EQ(settings.target.channel, 5);
}

TEST_F(command_line, options_may_stand_behind_arguments) {
    EXPECT_EQ(parse({"router", "-h", "1000", "-P", "7002"}), command::TRACE);
    EXPECT_STREQ(settings.host, "router");
    EXPECT_EQ(settings.mode_flags, MODE_HEX);
    EXPECT_EQ(settings.port, 7002);
    EXPECT_EQ(settings.target.slot, 1);
}

TEST_F(command_line, the_password_leaves_the_argument_vector) {
    parse_for_trace({"--pwd=se=cret", "--pwd", "second"});
    EXPECT_STREQ(settings.password.text(), "second");
    EXPECT_EQ(vectors.back().text(1), std::string("--pwd=\0\0\0\0\0\0\0", 13));
    EXPECT_EQ(vectors.back().text(2), "--pwd");
    EXPECT_EQ(vectors.back().text(3), std::string("\0\0\0\0\0\0", 6));
    settings.password.wipe();
    EXPECT_EQ(settings.password.text(), nullptr);
}

TEST_F(command_line, an_empty_password_is_a_password) {
    parse_for_trace({"--pwd="});
    EXPECT_STREQ(settings.password.text(), "");
}

TEST_F(command_line, filters_may_fill_the_whole_buffer) {
    // The section header, one filter's header, two end elements and START take 20 octets.
    parse_for_trace({"-I", std::string(1024 - 20, 'x')});
    EXPECT_EQ(settings.addinfo.used, 1024);
}

TEST_F(command_line, filters_that_do_not_fit_are_refused) {
    EXPECT_EQ(parse({"-I", std::string(1024 - 19, 'x'), "router", "1000"}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "ERROR filters too long (1025 > 1024 octets)\n");
}

TEST_F(command_line, line_elements_count_for_the_buffer_too) {
    EXPECT_EQ(parse({"-I", std::string(1024 - 20, 'x'), "--vci=1", "--vpi=1", "-z", "router", "1000"}),
              command::SHOW_USAGE);
    EXPECT_EQ(messages, "ERROR filters too long (1039 > 1024 octets)\n");
}

TEST_F(command_line, other_usage_errors_come_before_the_length_of_filters) {
    EXPECT_EQ(parse({"-I", std::string(5000, 'x')}), command::SHOW_USAGE);
    EXPECT_EQ(messages, "");
    EXPECT_EQ(parse({"-I", std::string(5000, 'x'), "--help"}), command::SHOW_HELP);
    EXPECT_EQ(messages, "");
}

}  // namespace
}  // namespace ifwatch
