#include "client/secret.h"

#include <cstring>

namespace ifwatch {

void secret::take(char* text) {
    wipe();
    const std::size_t length = std::strlen(text);
    text_ = std::make_unique<char[]>(length + 1);
    std::memcpy(text_.get(), text, length);
    explicit_bzero(text, length);
}

void secret::wipe() {
    if (text_ != nullptr) {
        explicit_bzero(text_.get(), std::strlen(text_.get()));
        text_.reset();
    }
}

[[gnu::noinline]] void wipe_dead_stack() {
    char dead[65536];
    explicit_bzero(dead, sizeof dead);
}

}  // namespace ifwatch
