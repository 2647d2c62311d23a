#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ifwatch {

/// Where text is assembled before it leaves in one piece.
///
/// `drain` empties a full buffer so that writing can go on; a sink without one, or whose drain fails, cuts what does
/// not fit. Nothing is ever written behind `capacity`.
struct text_sink {
    char* data = nullptr;
    std::size_t capacity = 0;
    std::size_t used = 0;
    bool (*drain)(text_sink&) = nullptr;

    [[nodiscard]] std::string_view text() const { return {data, used}; }
};

/// Drains the sink to make room. True when there is room for `n` characters now.
[[nodiscard]] bool make_room(text_sink& sink, std::size_t n);

/// Room for `n` characters at data + used (the caller adds to `used` what it writes), or nullptr when there is none.
[[nodiscard]] inline char* reserve(text_sink& sink, std::size_t n) {
    return sink.capacity - sink.used >= n || make_room(sink, n) ? sink.data + sink.used : nullptr;
}

/// Puts a text that is longer than the room in the sink.
void put_in_parts(text_sink& sink, std::string_view text);

inline void put(text_sink& sink, std::string_view text) {
    if (sink.capacity - sink.used < text.size()) {
        put_in_parts(sink, text);
        return;
    }
    std::copy_n(text.data(), text.size(), sink.data + sink.used);
    sink.used += text.size();
}

inline void put(text_sink& sink, char character) { put(sink, std::string_view(&character, 1)); }
void put_run(text_sink& sink, char character, std::size_t count);

/// A sink of N characters of its own, for a text that is built before it is printed. What does not fit is cut.
template <std::size_t N>
class text_buffer : public text_sink {
public:
    text_buffer() {
        data = storage_;
        capacity = N;
        storage_[0] = '\0';
    }
    ~text_buffer() = default;
    text_buffer(const text_buffer&) = delete;
    text_buffer& operator=(const text_buffer&) = delete;
    text_buffer(text_buffer&&) = delete;
    text_buffer& operator=(text_buffer&&) = delete;

    /// The text with a terminating zero, for calls of the system that want one.
    [[nodiscard]] const char* c_str() {
        storage_[used] = '\0';
        return storage_;
    }

private:
    char storage_[N + 1];
};

}  // namespace ifwatch
