#pragma once

#include <memory>

namespace ifwatch {

/// A password that leaves no copy behind: it is overwritten where it came from, and here when it is no longer needed.
class secret {
public:
    secret() = default;
    ~secret() { wipe(); }
    secret(const secret&) = delete;
    secret& operator=(const secret&) = delete;
    secret(secret&&) = delete;
    secret& operator=(secret&&) = delete;

    /// Takes the text over and fills the place where it stood with zeros.
    void take(char* text);
    void wipe();

    /// nullptr when nothing was taken.
    [[nodiscard]] const char* text() const { return text_.get(); }

private:
    std::unique_ptr<char[]> text_;
};

/// Overwrites the stack below its caller, where functions that have returned may have left a piece of a password: a
/// vector register saved, an argument spilled.
void wipe_dead_stack();

}  // namespace ifwatch
