#pragma once

#include <string>

#include "base/print.h"

namespace ifwatch {

/// While it lives, what is printed to the standard output is kept here instead.
class captured_output {
public:
    captured_output() {
        text().clear();
        set_output_writer([](const char* data, std::size_t length) {
            text().append(data, length);
            return static_cast<long>(length);
        });
    }
    ~captured_output() { set_output_writer(nullptr); }
    captured_output(const captured_output&) = delete;
    captured_output& operator=(const captured_output&) = delete;
    captured_output(captured_output&&) = delete;
    captured_output& operator=(captured_output&&) = delete;

    /// All that was printed since the last call.
    [[nodiscard]] std::string take() {
        flush_output();
        std::string printed;
        printed.swap(text());
        return printed;
    }

private:
    static std::string& text() {
        static std::string kept;
        return kept;
    }
};

}  // namespace ifwatch
