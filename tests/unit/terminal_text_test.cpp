#include "base/terminal_text.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "support/octet_pipe.h"

namespace ifwatch::test {
namespace {

using std::string_literals::operator""s;

std::string form_of(const std::string& text) {
    text_buffer<4096> sink;
    put_terminal_text(sink, text);
    return std::string(sink.text());
}

TEST(terminal_text, keeps_printable_ascii_line_feeds_and_tabs) {
    std::string kept = "\n\t";
    for (char character = ' '; character <= '~'; ++character) {
        kept += character;
    }
    EXPECT_EQ(form_of(kept), kept);
    EXPECT_EQ(form_of(""), "");
}

TEST(terminal_text, shows_every_other_octet) {
    int shown = 0;
    for (int octet = 0; octet < 256; ++octet) {
        const bool kept = (octet >= 0x20 && octet <= 0x7E) || octet == 0x0A || octet == 0x09;
        if (!kept) {
            const char* const digits = "0123456789abcdef";
            EXPECT_EQ(form_of({'a', static_cast<char>(octet), 'b'}),
                      std::string("a\\x") + digits[octet / 16] + digits[octet % 16] + "b");
            ++shown;
        }
    }
    EXPECT_EQ(shown, 256 - 95 - 2);
}

TEST(terminal_text, shows_what_stands_together) {
    EXPECT_EQ(form_of("\x1b]0;title\x07\x9b\x7f\r\b\0\xff"s), R"(\x1b]0;title\x07\x9b\x7f\x0d\x08\x00\xff)");
}

TEST(terminal_text, has_no_sign_of_its_own_that_is_escaped) { EXPECT_EQ(form_of(R"(\x1b\)"), R"(\x1b\)"); }

TEST(terminal_text, is_cut_where_a_sink_is_full) {
    text_buffer<6> sink;
    put_terminal_text(sink, "ab\x1b\x1b");
    EXPECT_EQ(sink.text(), "ab\\x1b");
}

TEST(terminal_text, goes_through_a_small_sink_in_pieces) {
    static std::string taken;
    taken.clear();
    text_buffer<3> sink;
    sink.drain = [](text_sink& full) {
        taken += full.text();
        full.used = 0;
        return true;
    };
    put_terminal_text(sink, "\x1b\x1b-\x1b");
    EXPECT_EQ(taken + std::string(sink.text()), R"(\x1b\x1b-\x1b)");
}

TEST(terminal_text, is_written_whole_when_it_is_longer_than_the_pieces) {
    octet_pipe pipe;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        expected += "\\x1b";
    }
    ASSERT_TRUE(write_terminal_text(pipe.writer(), std::string(5000, '\x1b')));
    EXPECT_EQ(pipe.drain(), expected);
}

TEST(terminal_text, tells_why_it_cannot_be_written) {
    const octet_pipe pipe;  // its reading end does not take anything
    EXPECT_FALSE(write_terminal_text(pipe.reader(), "text"));
    EXPECT_EQ(errno, EBADF);
    EXPECT_FALSE(write_terminal_text(pipe.reader(), std::string(5000, '\x1b')));
    EXPECT_EQ(errno, EBADF);
}

}  // namespace
}  // namespace ifwatch::test
