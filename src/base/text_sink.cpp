#include "base/text_sink.h"

#include <algorithm>
#include <cstring>

namespace ifwatch {

char* reserve(text_sink& sink, std::size_t n) {
    if (sink.capacity - sink.used < n && (sink.drain == nullptr || !sink.drain(sink))) {
        return nullptr;
    }
    return sink.capacity - sink.used < n ? nullptr : sink.data + sink.used;
}

void put(text_sink& sink, std::string_view text) {
    while (!text.empty()) {
        const std::size_t room = sink.capacity - sink.used;
        const std::size_t part = std::min(room, text.size());
        if (part != 0) {
            std::memcpy(sink.data + sink.used, text.data(), part);
            sink.used += part;
            text.remove_prefix(part);
        }
        if (!text.empty() && (sink.drain == nullptr || !sink.drain(sink))) {
            return;
        }
    }
}

void put(text_sink& sink, char character) { put(sink, std::string_view(&character, 1)); }

void put_run(text_sink& sink, char character, std::size_t count) {
    char block[64];
    std::memset(block, character, std::min(count, sizeof block));
    while (count != 0) {
        const std::size_t part = std::min(count, sizeof block);
        put(sink, std::string_view(block, part));
        count -= part;
    }
}

}  // namespace ifwatch
