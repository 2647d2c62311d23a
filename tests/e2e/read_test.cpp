// ifwatch-read as a program: files and streams, what it names on the way, what it says at the end, and what it refuses.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "capture/pcapng_writer.h"
#include "support/octet_pipe.h"
#include "support/pcap_octets.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/shown_capture.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using octet_list = std::vector<std::uint8_t>;

constexpr std::uint32_t ETHERNET = 1;
constexpr std::uint32_t BLUETOOTH = 201;  // no interface of a router carries it

constexpr const char* SECOND_FRAME_LINE = "000001.500 R DATA[0060]   \n";

pcap_octets two_packets() {
    pcap_octets file;
    file.header(ETHERNET).packet(1'600'000'000, 250'000, ethernet_frame(1));
    return file.packet(1'600'000'001, 750'000, ethernet_frame(2));
}

outcome read_file_with(std::vector<std::string> arguments) { return run({IFWATCH_READ_PROGRAM, std::move(arguments)}); }

/// A pcapng file put together block by block.
class pcapng_text {
public:
    pcapng_text() {
        capture::build_section_header(block_, "test");
        add();
    }

    pcapng_text& interface(std::uint16_t link_type, const std::string& name) {
        capture::pcapng_interface described;
        described.link_type = link_type;
        described.name = name;
        capture::build_interface_description(block_, described);
        return add();
    }

    pcapng_text& packet(std::uint32_t interface_id, std::uint64_t time_ms, const octet_list& data,
                        std::uint64_t lost = 0, std::uint32_t flags = 0) {
        capture::pcapng_packet packet;
        packet.interface_id = interface_id;
        packet.time_ms = time_ms;
        packet.data = data;
        packet.original_length = static_cast<std::uint32_t>(data.size());
        packet.flags = flags;
        packet.lost = lost;
        capture::build_enhanced_packet(block_, packet);
        return add();
    }

    [[nodiscard]] const std::string& text() const { return text_; }

private:
    pcapng_text& add() {
        text_.append(block_.begin(), block_.end());
        return *this;
    }

    capture::block_buffer block_;
    std::string text_;
};

// --- What is shown

TEST(read, times_count_from_the_first_packet_whose_date_is_told) {
    const outcome got = read_input(two_packets().text(), {"-h"});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.output, StartsWith("000000.000 R DATA[0060]   \n      0000: ff ff"));
    EXPECT_THAT(got.output, HasSubstr(SECOND_FRAME_LINE));
    EXPECT_EQ(got.errors,
              "ifwatch-read: standard input: 000000.000 is 2020-09-13 12:26:40.250000 UTC\n"
              "ifwatch-read: 2 packets shown\n");
}

TEST(read, times_of_a_routers_own_clock_stay) {
    pcap_octets file;
    file.header(ETHERNET).packet(4711, 42'000, ethernet_frame());
    const outcome got = read_input(file.text());
    EXPECT_THAT(got.output, StartsWith("004711.042 R DATA[0060]"));
    EXPECT_EQ(got.errors, "ifwatch-read: 1 packet shown\n");
}

TEST(read, a_date_before_1970_is_told_too) {
    // Times of classic PCAP are unsigned; those of pcapng begin at an offset, here the one of a day before.
    pcap_octets file;
    file.header(ETHERNET).packet(0xFFFFFFFF, 0, ethernet_frame());
    EXPECT_THAT(read_input(file.text()).errors, HasSubstr("000000.000 is 2106-02-07 06:28:15.000000 UTC"));
}

TEST(read, the_options_of_the_tracer_choose_the_decoders) {
    const std::string file = two_packets().text();
    EXPECT_THAT(read_input(file, {"-h"}).output, testing::Not(HasSubstr("Arp")));
    EXPECT_THAT(read_input(file, {"-i"}).output, testing::Not(HasSubstr("0000:")));
    // Without any, those of the interface type: -h -i -p of a LAN.
    EXPECT_EQ(read_input(file).output, read_input(file, {"-hip"}).output);
    EXPECT_THAT(read_input(file, {"-D"}).output, HasSubstr("| 001.500+1.500"));
}

TEST(read, a_given_type_holds_where_the_capture_tells_none) {
    pcap_octets file;
    file.header(147).packet(1, 0, octet_list{0x02, 0x01, 0x7F});  // of the user's own link types
    EXPECT_EQ(read_input(file.text()).output, "");
    EXPECT_THAT(read_input(file.text(), {"--type", "0", "-2"}).output, HasSubstr("SABME"));
}

TEST(read, what_an_address_sent_is_shown_as_sent) {
    EXPECT_THAT(outline_of(read_input(two_packets().text(), {"--sent", "02:00:00:00:00:02"}).output),
                testing::ElementsAre("000000.000 R DATA[0060]", "000001.500 X DATA[0060]"));
    EXPECT_THAT(outline_of(read_input(two_packets().text(), {"--sent=all"}).output),
                testing::ElementsAre("000000.000 X DATA[0060]", "000001.500 X DATA[0060]"));
}

TEST(read, a_line_names_the_interface_where_it_changes) {
    pcapng_text file;
    file.interface(1, "eth0").interface(9, "").interface(BLUETOOTH, "hci0");
    file.packet(0, 1000, ethernet_frame()).packet(0, 1001, ethernet_frame()).packet(1, 1002, {0xC0, 0x21, 1, 1, 0, 4});
    file.packet(2, 1003, {1, 2, 3}).packet(1, 1004, {0xC0, 0x21, 2, 1, 0, 4}).packet(0, 1005, ethernet_frame());
    const outcome got = read_input(file.text());
    EXPECT_THAT(outline_of(got.output),
                testing::ElementsAre("=== eth0: LAN", "000001.000 R DATA[0060]", "000001.001 R DATA[0060]",
                                     "=== interface 1: ISDN B-channel", "000001.002 R #00000001 DATA[0006]",
                                     "000001.004 R #00000002 DATA[0006]", "=== eth0: LAN", "000001.005 R DATA[0060]"));
    EXPECT_THAT(got.errors, EndsWith("ifwatch-read: 5 packets shown, 1 of link type 201 (no decoder)\n"));
}

TEST(read, one_interface_is_not_named) {
    pcapng_text file;
    file.interface(1, "eth0").packet(0, 1, ethernet_frame());
    EXPECT_THAT(outline_of(read_input(file.text()).output), testing::ElementsAre("000000.001 R DATA[0060]"));
}

TEST(read, a_name_cannot_forge_a_line) {
    pcapng_text file;
    file.interface(1, "a\n000009.000 X\x1b[2J").interface(1, "b").packet(0, 1, ethernet_frame());
    EXPECT_THAT(read_input(file.text()).output, StartsWith("=== a\\n000009.000 X\\x1b[2J: LAN\n000000.001 R"));
}

TEST(read, each_interface_has_a_state_of_its_own) {
    // Two halves of an asynchronous PPP frame on one interface, one of another in between.
    pcapng_text file;
    file.interface(9, "a").interface(9, "b");
    file.packet(0, 1, {0x7E, 0xFF, 0x7D, 0x23, 0xC0, 0x21, 0x09}).packet(1, 2, {0x7E, 0xFF, 0x7D, 0x23, 0x80});
    file.packet(0, 3, {0x01, 0x00, 0x08, 0x00, 0x00, 0x00, 0x00, 0xB6, 0x20, 0x7E});
    const std::string together = read_input(file.text(), {"-a", "-p"}).output;
    pcapng_text alone;
    alone.interface(9, "a").packet(0, 1, {0x7E, 0xFF, 0x7D, 0x23, 0xC0, 0x21, 0x09});
    alone.packet(0, 3, {0x01, 0x00, 0x08, 0x00, 0x00, 0x00, 0x00, 0xB6, 0x20, 0x7E});
    const std::string first = read_input(alone.text(), {"-a", "-p"}).output;
    const std::string end_of_first = first.substr(first.find("000000.003"));
    EXPECT_THAT(together, EndsWith(end_of_first));
}

TEST(read, lost_packets_show_as_lost_messages) {
    pcapng_text file;
    file.interface(1, "eth0").packet(0, 1, ethernet_frame(), 2).packet(0, 2, ethernet_frame());
    file.packet(0, 3, ethernet_frame(), 7);
    EXPECT_THAT(
        outline_of(read_input(file.text()).output),
        testing::ElementsAre("### 2 messages have been lost 4 2", "000000.001 R DATA[0060]", "000000.002 R DATA[0060]",
                             "### 7 messages have been lost 13 6", "000000.003 R DATA[0060]"));
}

TEST(read, flags_tell_the_direction) {
    pcapng_text file;
    file.interface(1, "eth0").packet(0, 1, ethernet_frame(), 0, 1).packet(0, 2, ethernet_frame(), 0, 2);
    EXPECT_THAT(outline_of(read_input(file.text(), {"--sent", "all"}).output),
                testing::ElementsAre("000000.001 R DATA[0060]", "000000.002 X DATA[0060]"));
}

TEST(read, more_interfaces_than_are_remembered_are_all_shown) {
    pcapng_text file;
    for (int i = 0; i < 600; ++i) {
        file.interface(1, "eth" + std::to_string(i));
    }
    for (int round = 0; round < 2; ++round) {
        for (std::uint32_t i = 0; i < 600; ++i) {
            file.packet(i, 1, ethernet_frame());
        }
    }
    const outcome got = read_input(file.text(), {"-i"});
    EXPECT_EQ(got.errors, "ifwatch-read: 1200 packets shown\n");
    EXPECT_EQ(outline_of(got.output).size(), 2400U);
    EXPECT_THAT(got.output, HasSubstr("=== eth599: LAN\n"));
}

// --- Files and streams

TEST(read, a_record_is_printed_as_soon_as_it_is_whole) {
    const octet_pipe input;
    process running({.program = IFWATCH_READ_PROGRAM, .arguments = {"-h", "-"}, .input_fd = input.reader()});
    const std::string whole = two_packets().text();
    const std::size_t second = whole.size() - 60 - 16;
    ASSERT_EQ(write(input.writer(), whole.data(), second), static_cast<ssize_t>(second));
    EXPECT_TRUE(running.wait_for_output("000000.000 R DATA[0060]")) << running.errors();
    EXPECT_TRUE(running.wait_for_output("\n\n"));
    ASSERT_EQ(write(input.writer(), &whole[second], 76), 76);
    EXPECT_TRUE(running.wait_for_output("000001.500 R DATA[0060]"));
    running.terminate();
}

TEST(read, a_file_leaves_in_large_blocks) {
    pcap_octets file;
    file.header(ETHERNET);
    for (std::uint32_t i = 0; i < 3000; ++i) {
        file.packet(i, 0, ethernet_frame());
    }
    const temp_directory directory;
    const std::string path = directory.write("many.pcap", file.text());
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
    process running({.program = IFWATCH_READ_PROGRAM, .arguments = {"-h", path}, .output_fd = ends[1]});
    close(ends[1]);
    std::size_t writes = 0;
    std::size_t octets = 0;
    std::vector<char> block(std::size_t{1} << 20);
    for (ssize_t got = 0; (got = read(ends[0], block.data(), block.size())) > 0; ++writes) {
        octets += static_cast<std::size_t>(got);
    }
    close(ends[0]);
    EXPECT_EQ(running.wait().status, 0);
    EXPECT_GT(octets, std::size_t{3000} * 200);
    EXPECT_LE(writes, octets / 32768 + 1);
}

TEST(read, several_files_are_shown_one_behind_the_other) {
    const temp_directory directory;
    const std::string pcap = directory.write("a.pcap", two_packets().text());
    pcapng_text second;
    second.interface(177, "isdn0").packet(0, 7, octet_list(19, 0x01));
    const std::string pcapng = directory.write("b.pcapng", second.text());
    const outcome got = read_file_with({pcap, pcapng, "-2"});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(
        outline_of(got.output),
        testing::ElementsAre("=== " + pcap + ": interface 0: LAN", "000000.000 R DATA[0060]", "000001.500 R DATA[0060]",
                             "=== " + pcapng + ": isdn0: ISDN D-channel", "000000.007 R #00000001 DATA[0003]"));
    EXPECT_EQ(got.errors, "ifwatch-read: " + pcap +
                              ": 000000.000 is 2020-09-13 12:26:40.250000 UTC\n"
                              "ifwatch-read: 3 packets shown\n");
}

TEST(read, a_file_that_cannot_be_opened_is_named_and_the_others_are_shown) {
    const temp_directory directory;
    const std::string pcap = directory.write("a.pcap", two_packets().text());
    const outcome got = read_file_with({directory.file("none"), pcap, directory.path()});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(outline_of(got.output).size(), 3U);
    EXPECT_THAT(got.errors, StartsWith("ifwatch-read: " + directory.file("none") + ": No such file or directory\n"));
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-read: " + directory.path() + ": Is a directory\n"));
    EXPECT_THAT(got.errors, EndsWith("ifwatch-read: 2 packets shown\n"));
}

TEST(read, more_files_than_may_be_open_are_told) {
#ifdef IFWATCH_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizers open a pipe to check an object, and no descriptor is left for it";
#endif
    const temp_directory directory;
    const std::string pcap = directory.write("a.pcap", two_packets().text());
    const outcome got =
        run({"sh", {"-c", "ulimit -n 16; exec \"$0\" $(yes \"$1\" | head -n 20)", IFWATCH_READ_PROGRAM, pcap}});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr(pcap + ": Too many open files: all files are opened before the first is shown"));
    EXPECT_FALSE(got.output.empty());
}

// --- Damage

TEST(read, a_damaged_file_shows_all_before_the_damage) {
    const std::string whole = two_packets().text();
    const outcome got = read_input(whole.substr(0, whole.size() - 1), {"-h"});
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(outline_of(got.output), testing::ElementsAre("000000.000 R DATA[0060]"));
    EXPECT_THAT(got.errors, HasSubstr("ifwatch-read: standard input: packet 2 at offset 100: "));
    EXPECT_THAT(got.errors, EndsWith("ifwatch-read: 1 packet shown\n"));
}

TEST(read, what_is_no_capture_is_refused) {
    for (const std::string& text : {std::string(), std::string("x"), std::string(1000, 'x')}) {
        const outcome got = read_input(text);
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(got.output, "");
        EXPECT_THAT(got.errors, StartsWith("ifwatch-read: standard input: "));
    }
}

TEST(read, packets_that_end_in_their_link_header_are_counted) {
    pcap_octets file;
    file.header(177).packet(1, 0, octet_list(15)).packet(2, 0, octet_list(19, 1));
    const outcome got = read_input(file.text(), {"-v"});
    EXPECT_EQ(got.status, 0);
    EXPECT_THAT(got.errors,
                HasSubstr("ifwatch-read: packet 1 at offset 24: 15 octets, but the header of link type 177 has 16\n"));
    EXPECT_THAT(got.errors, EndsWith("1 packet shown, 1 too short for the header of the link type\n"));
}

TEST(read, an_output_that_fails_ends_it) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    const temp_directory directory;
    process running({.program = IFWATCH_READ_PROGRAM,
                     .arguments = {directory.write("a.pcap", two_packets().text())},
                     .output_fd = full});
    close(full);
    const outcome got = running.wait();
    EXPECT_EQ(got.status, 1);
    EXPECT_THAT(got.errors, HasSubstr("ERROR write (No space left on device)\n"));
}

// --- The filter

#ifdef IFWATCH_HAS_SECCOMP
TEST(read, gives_up_system_calls_before_the_first_packet) {
    const octet_pipe input;
    process running({.program = IFWATCH_READ_PROGRAM, .arguments = {"-"}, .input_fd = input.reader()});
    const std::string whole = two_packets().text();
    ASSERT_EQ(write(input.writer(), whole.data(), whole.size()), static_cast<ssize_t>(whole.size()));
    ASSERT_TRUE(running.wait_for_output("000000.000 R DATA[0060]")) << running.errors();
    std::ifstream status("/proc/" + std::to_string(running.id()) + "/status");
    const std::string text((std::istreambuf_iterator<char>(status)), std::istreambuf_iterator<char>());
    EXPECT_THAT(text, HasSubstr("Seccomp:\t2"));
    running.terminate();
}
#endif

// --- Colours

TEST(read, nothing_is_coloured_in_a_pipe) {
    const std::string file = two_packets().text();
    EXPECT_THAT(read_input(file, {"-h"}).output, testing::Not(HasSubstr("\x1b")));
    EXPECT_EQ(read_input(file, {"-h", "--color=auto"}).output, read_input(file, {"-h", "--color=never"}).output);
}

TEST(read, colours_can_be_asked_for) {
    pcapng_text file;
    file.interface(1, "eth0").interface(1, "eth1").packet(0, 1, ethernet_frame());
    EXPECT_EQ(read_input(file.text(), {"-h", "--color=always"}).output,
              "\x1b[36m=== eth0: LAN\x1b[0m\n"
              "\x1b[1m000000.001 R DATA[0060]   \x1b[0m\n"
              "\x1b[2m      0000: ff ff ff ff ff ff 02 00  00 00 00 01 08 06 00 00  ................\x1b[0m\n"
              "\x1b[2m      0010: 00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  ................\x1b[0m\n"
              "\x1b[2m      0020: 00 00 00 00 00 00                                 ......          \x1b[0m\n\n");
}

// --- The command line

TEST(read, options_that_need_a_router_are_named_with_the_reason) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> refused = {
        {{"-I", "1.1.1.1"}, "-I is a filter that the router applies"},
        {{"-B", "::6"}, "-B is a filter that the router applies"},
        {{"-o"}, "-o is a filter that the router applies"},
        {{"--src=02:00:00:00:00:01"}, "--src is a filter that the router applies"},
        {{"--dst=02:00:00:00:00:01"}, "--dst is a filter that the router applies"},
        {{"--llc"}, "--llc is a filter that the router applies"},
        {{"-V", "1"}, "-V is for the session with a router"},
        {{"-P", "7000"}, "-P is for the session with a router"},
        {{"-H", "router"}, "-H is for the session with a router"},
        {{"--pwd=x"}, "--pwd is for the session with a router"},
        {{"--pwd"}, "--pwd is for the session with a router"},
        {{"-r", "64"}, "-r chooses what the router sends"},
        {{"-z"}, "-z chooses what the router sends"},
        {{"--vpi=1"}, "--vpi chooses what the router sends"},
        {{"--vci=1"}, "--vci chooses what the router sends"},
        {{"-n", "x"}, "-n has no meaning"},
        {{"--ethereal"}, "--ethereal is for writing PCAP"},
        {{"--pcap-pipe"}, "--pcap-pipe is for writing PCAP"},
        {{"--pcap-file"}, "--pcap-file is for writing PCAP"},
        {{"--pcap-linktype=1"}, "--pcap-linktype is for writing PCAP"},
        {{"--ofile=x"}, "--ofile is for writing PCAP"},
        {{"--print"}, "--print shows what ifwatch writes"},
        {{"-Q"}, "unknown option '-Q'"},
        {{"--start"}, "unknown option '--start'"},
        {{"-T"}, "-T takes an argument, and none is given"},
        {{"--type"}, "--type: 1 required argument (the code of an interface type) is missing"},
        {{"--type", "lan"}, "--type takes the code of an interface type, not 'lan'"},
        {{"--sent", "me"}, "--sent takes none, all, a MAC address or an IPv4 address, not 'me'"},
        {{"--color=red"}, "--color takes auto, always or never, not 'red'"},
        {{"--help=x"}, "--help takes no argument, not 'x'"},
    };
    for (const auto& [arguments, text] : refused) {
        const outcome got = read_input("", arguments);
        EXPECT_EQ(got.status, 2) << text;
        EXPECT_EQ(got.output, "");
        EXPECT_THAT(got.errors, StartsWith("ifwatch-read: " + text));
        EXPECT_THAT(got.errors, EndsWith(" (--help tells more)\n"));
    }
}

TEST(read, help_begins_with_examples) {
    for (const char* const option : {"--help", "-?"}) {
        const outcome got = read_input("", {option});
        EXPECT_EQ(got.status, 0);
        EXPECT_THAT(got.output, StartsWith("ifwatch-read: shows captures as ifwatch shows a trace.\n\nExamples:\n"));
        EXPECT_EQ(got.errors, "");
    }
}

}  // namespace
}  // namespace ifwatch::test
