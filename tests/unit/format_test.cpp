#include "base/format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "base/print.h"
#include "support/captured_output.h"

namespace ifwatch {
namespace {

template <format_text Format, class... Arguments>
std::string formatted(const Arguments&... arguments) {
    text_buffer<1024> text;
    print_to<Format>(text, arguments...);
    return std::string(text.text());
}

std::string named(table_text text, std::uint32_t value) {
    text_buffer<256> out;
    print_named_to(out, text, value);
    return std::string(out.text());
}

TEST(format, literal_text_stands_as_it_is) {
    EXPECT_EQ(formatted<"">(), "");
    EXPECT_EQ(formatted<"\tplain\n">(), "\tplain\n");
    EXPECT_EQ(formatted<"100%% of %d%%">(7), "100% of 7%");
}

TEST(format, decimal) {
    EXPECT_EQ(formatted<"%d|%d|%d">(0, -1, 2147483647), "0|-1|2147483647");
    EXPECT_EQ(formatted<"%d">(std::uint32_t{0xFFFFFFFF}), "-1");
    EXPECT_EQ(formatted<"%d">(std::int32_t{-2147483647 - 1}), "-2147483648");
    EXPECT_EQ(formatted<"%5d|%-5d|%05d|%1d">(-42, -42, -42, 123), "  -42|-42  |-0042|123");
    EXPECT_EQ(formatted<"%-05d|%0-5d|">(42, 42), "42   |42   |") << "no zeros behind a number";
    EXPECT_EQ(formatted<"%u">(std::int32_t{-1}), "4294967295");
    EXPECT_EQ(formatted<"%u">(std::uint8_t{255}), "255");
}

TEST(format, long_keeps_an_unsigned_word_positive) {
    EXPECT_EQ(formatted<"%ld|%lu">(std::uint32_t{0xFFFFFFFF}, std::uint32_t{0xFFFFFFFF}), "4294967295|4294967295");
    EXPECT_EQ(formatted<"%ld">(std::int32_t{-5}), "-5");
    EXPECT_EQ(formatted<"%lx">(std::int32_t{-1}), "ffffffff");
    EXPECT_EQ(formatted<"%08ld">(std::uint32_t{17}), "00000017");
    EXPECT_EQ(formatted<"%lu|%lx">(std::uint64_t{1} << 40, std::uint64_t{1} << 40), "1099511627776|10000000000");
}

TEST(format, half_words) { EXPECT_EQ(formatted<"%hd|%hu">(0x1FFFF, 0x1FFFE), "-1|65534"); }

TEST(format, hexadecimal) {
    EXPECT_EQ(formatted<"%x|%X|%02x|%04X|%1X">(0xAB, 0xAB, 5, 0xABC, 0xF0), "ab|AB|05|0ABC|F0");
    EXPECT_EQ(formatted<"0x%08x">(std::uint32_t{0xDEADBEEF}), "0xdeadbeef");
    EXPECT_EQ(formatted<"%x">(0), "0");
    EXPECT_EQ(formatted<"%x">(std::uint64_t{0x123456789A}), "3456789a");
    EXPECT_EQ(formatted<"%4X|%-4x|">(0xA, 0xA), "   A|a   |");
}

TEST(format, precision_of_numbers) {
    EXPECT_EQ(formatted<"%.2x|%2.2x|%4.2x|%.0d|">(5, 0xABC, 7, 0), "05|abc|  07||");
    EXPECT_EQ(formatted<"%05.3d">(7), "  007");
}

TEST(format, texts) {
    const std::string text = "name";
    EXPECT_EQ(formatted<"%s|%6s|%-6s|%.2s|%-6.2s|">(text, text, text, text, text), "name|  name|name  |na|na    |");
    EXPECT_EQ(formatted<"%.0s|%3.0s|">(text, text), "|   |");
    EXPECT_EQ(formatted<"%s">(static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(formatted<"%s">(table_text("of a table")), "of a table");
    EXPECT_EQ(formatted<"%*.*s|">(5, 2, "abcdef"), "   ab|");
    EXPECT_EQ(formatted<"%*.*s|">(-5, -1, "abc"), "abc  |");
    EXPECT_EQ(formatted<"%-*s|%*d|">(5, "abc", 3, 7), "abc  |  7|");
    EXPECT_EQ(formatted<"%-24.24s|">("a name that is longer than its column"), "a name that is longer th|");
}

TEST(format, octets_as_they_are) {
    EXPECT_EQ(formatted<"%c%c%c">('a', 0, 0x80), std::string("a\0\x80", 3));
    EXPECT_EQ(formatted<"%c">(std::uint8_t{0xFF}), "\xFF");
}

TEST(format, agrees_with_the_c_library) {
    const int values[] = {0, 1, -1, 9, 10, 255, 256, 65535, 65536, 2147483647, -2147483647 - 1};
    for (const int value : values) {
        char expected[256];
        std::snprintf(expected, sizeof expected, "%d %5d %-5d| %05d %x %04X %08x %u %3u %.3d %7.3x", value, value,
                      value, value, static_cast<unsigned>(value), static_cast<unsigned>(value),
                      static_cast<unsigned>(value), static_cast<unsigned>(value), static_cast<unsigned>(value), value,
                      static_cast<unsigned>(value));
        EXPECT_EQ((formatted<"%d %5d %-5d| %05d %x %04X %08x %u %3u %.3d %7.3x">(
                      value, value, value, value, value, value, value, value, value, value, value)),
                  expected);
    }
}

TEST(format, a_full_buffer_cuts) {
    text_buffer<4> text;
    print_to<"%s%d">(text, "abc", 12345);
    EXPECT_EQ(text.text(), "abc1");
    EXPECT_STREQ(text.c_str(), "abc1");
    text_buffer<2> letters;
    print_to<"%c%c%c">(letters, 'a', 'b', 'c');
    EXPECT_EQ(letters.text(), "ab");
}

TEST(format, named_texts_hold_at_most_one_number) {
    EXPECT_EQ(named("plain", 7), "plain");
    EXPECT_EQ(named("unknown code %d", 0xFFFFFFFF), "unknown code -1");
    EXPECT_EQ(named("\n!!!\t(0x%x) %%", 0xAB), "\n!!!\t(0xab) %");
    EXPECT_EQ(named("TSI(%c)", 'T'), "TSI(T)");
}

TEST(format, named_texts_take_every_flag) {
    EXPECT_EQ(named("%4x|", 0xAB), "  ab|");
    EXPECT_EQ(named("%-4x|", 0xAB), "ab  |");
    EXPECT_EQ(named("%04x|", 0xAB), "00ab|");
    EXPECT_EQ(named("%.3d|", 7), "007|");
    EXPECT_EQ(named("%hd|", 0x1FFFF), "-1|");
    EXPECT_EQ(named("%lu|", 0xFFFFFFFF), "4294967295|");
}

TEST(print, is_written_once_when_flushed) {
    captured_output output;
    print<"a%d">(1);
    print_named("b", 0);
    EXPECT_EQ(output.take(), "a1b");
    EXPECT_EQ(output.take(), "");
}

TEST(print, a_text_longer_than_the_buffer_loses_nothing) {
    captured_output output;
    std::string expected;
    for (int i = 0; i < 30000; ++i) {
        print<"%06d\n">(i);
        char line[16];
        std::snprintf(line, sizeof line, "%06d\n", i);
        expected += line;
    }
    EXPECT_EQ(output.take(), expected);
}

TEST(print, a_bound_cuts_what_is_printed_under_it) {
    captured_output output;
    print<"before ">();
    begin_bounded_output(3);
    print<"%d">(12345);
    end_bounded_output();
    print<" behind">();
    EXPECT_EQ(output.take(), "before 123 behind");
}

TEST(print, a_bound_holds_across_a_buffer_that_fills) {
    constexpr std::size_t BOUND = 100000;  // more than the buffer
    captured_output output;
    print<"before ">();
    begin_bounded_output(BOUND);
    for (std::size_t i = 0; i < 3 * BOUND; ++i) {
        print<"x">();
    }
    end_bounded_output();
    print<" behind">();
    EXPECT_EQ(output.take(), "before " + std::string(BOUND, 'x') + " behind");
}

TEST(print, a_bound_that_is_not_reached_changes_nothing) {
    captured_output output;
    begin_bounded_output(100);
    print<"text">();
    end_bounded_output();
    EXPECT_EQ(output.take(), "text");
}

TEST(report, a_text_longer_than_the_buffer_loses_nothing) {
    const std::string name(10000, 'n');
    testing::internal::CaptureStderr();
    report<"ERROR cannot open %s (%s)\n">(name, "File name too long");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR cannot open " + name + " (File name too long)\n");
}

TEST(print, a_failed_write_is_kept_and_what_follows_is_dropped) {
    set_output_writer([](const char*, std::size_t) {
        errno = ENOSPC;
        return -1L;
    });
    print<"lost">();
    EXPECT_FALSE(flush_output());
    EXPECT_EQ(output_error(), ENOSPC);
    print<"more">();
    EXPECT_FALSE(flush_output());
    set_output_writer(nullptr);
    EXPECT_EQ(output_error(), 0);
}

TEST(print, short_and_interrupted_writes_go_on) {
    static std::string taken;
    static int calls = 0;
    taken.clear();
    calls = 0;
    set_output_writer([](const char* data, std::size_t) -> long {
        if (++calls == 2) {
            errno = EINTR;
            return -1;
        }
        taken += *data;
        return 1;
    });
    print<"abc">();
    EXPECT_TRUE(flush_output());
    EXPECT_EQ(taken, "abc");
    EXPECT_EQ(calls, 4);
    set_output_writer(nullptr);
}

}  // namespace
}  // namespace ifwatch
