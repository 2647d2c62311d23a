#include "base/text_sink.h"

namespace ifwatch {

bool make_room(text_sink& sink, std::size_t n) {
    return sink.drain != nullptr && sink.drain(sink) && sink.capacity - sink.used >= n;
}

void put_in_parts(text_sink& sink, std::string_view text) {
    while (!text.empty()) {
        const std::size_t part = std::min(sink.capacity - sink.used, text.size());
        std::copy_n(text.data(), part, sink.data + sink.used);
        sink.used += part;
        text.remove_prefix(part);
        if (!text.empty() && (sink.drain == nullptr || !sink.drain(sink))) {
            return;
        }
    }
}

void put_run(text_sink& sink, char character, std::size_t count) {
    while (count != 0) {
        const std::size_t part = std::min(count, sink.capacity - sink.used);
        std::fill_n(sink.data + sink.used, part, character);
        sink.used += part;
        count -= part;
        if (count != 0 && (sink.drain == nullptr || !sink.drain(sink))) {
            return;
        }
    }
}

}  // namespace ifwatch
