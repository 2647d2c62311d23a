#include "base/text_sink.h"

#include <gtest/gtest.h>

#include <string>

namespace ifwatch {
namespace {

bool empty(text_sink& sink) {
    sink.used = 0;
    return true;
}

bool fail(text_sink& /*sink*/) { return false; }

TEST(reserve, gives_room_at_the_end_of_what_is_written) {
    text_buffer<8> text;
    put(text, "abc");
    EXPECT_EQ(reserve(text, 5), text.data + 3);
    EXPECT_EQ(text.used, 3U) << "the caller adds what it writes";
}

TEST(reserve, a_full_sink_without_a_drain_has_none) {
    text_buffer<8> text;
    put(text, "abc");
    EXPECT_EQ(reserve(text, 6), nullptr);
}

TEST(reserve, empties_a_full_sink) {
    text_buffer<8> text;
    text.drain = empty;
    put(text, "abc");
    EXPECT_EQ(reserve(text, 6), text.data);
}

TEST(reserve, more_than_the_sink_ever_has_is_refused) {
    text_buffer<8> text;
    text.drain = empty;
    EXPECT_EQ(reserve(text, 9), nullptr);
}

TEST(reserve, a_drain_that_fails_leaves_no_room) {
    text_buffer<8> text;
    text.drain = fail;
    put(text, "abc");
    EXPECT_EQ(reserve(text, 6), nullptr);
    EXPECT_EQ(text.text(), "abc");
}

TEST(put, a_drain_that_fails_cuts_the_text) {
    text_buffer<8> text;
    text.drain = fail;
    put(text, "abcdefghij");
    EXPECT_EQ(text.text(), "abcdefgh");
}

TEST(put_run, repeats_a_character) {
    text_buffer<200> text;
    put_run(text, '-', 150);
    EXPECT_EQ(text.text(), std::string(150, '-'));
}

TEST(put_run, a_full_sink_cuts_it) {
    for (auto* const drain : {static_cast<bool (*)(text_sink&)>(nullptr), fail}) {
        text_buffer<8> text;
        text.drain = drain;
        put(text, "abc");
        put_run(text, '-', 10);
        EXPECT_EQ(text.text(), "abc-----");
    }
}

TEST(put_run, empties_a_full_sink_as_often_as_it_must) {
    text_buffer<8> text;
    text.drain = empty;
    put_run(text, '-', 20);
    EXPECT_EQ(text.text(), "----") << "two times eight have gone";
}

}  // namespace
}  // namespace ifwatch
