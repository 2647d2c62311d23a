#pragma once

#include <mutex>
#include <string>

#include "support/process.h"
#include "support/temp_directory.h"

namespace ifwatch::test {

/// An error stream that takes some messages and holds the program up at the next one, until it is released.
class held_up_errors {
public:
    held_up_errors();
    ~held_up_errors();
    held_up_errors(const held_up_errors&) = delete;
    held_up_errors& operator=(const held_up_errors&) = delete;
    held_up_errors(held_up_errors&&) = delete;
    held_up_errors& operator=(held_up_errors&&) = delete;

    /// The program is to be held up at what it writes behind these messages.
    void hold_up_behind(const std::string& messages);

    /// Lets the program go on. Returns all that it has written so far.
    std::string release();

    /// The program with this as its error stream.
    [[nodiscard]] command of(const command& what) const;

private:
    [[nodiscard]] std::string name() const { return directory_.file("errors"); }

    temp_directory directory_;
    int pipe_ = -1;
    int size_ = 0;
    std::mutex mutex_;  // over the next
    std::string text_;
};

}  // namespace ifwatch::test
