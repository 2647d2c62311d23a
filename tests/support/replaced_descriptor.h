#pragma once

#include <unistd.h>

namespace ifwatch::test {

/// While it lives, `descriptor` is a copy of `replacement`.
class replaced_descriptor {
public:
    replaced_descriptor(int descriptor, int replacement) : descriptor_(descriptor), former_(dup(descriptor)) {
        dup2(replacement, descriptor);
    }
    ~replaced_descriptor() {
        dup2(former_, descriptor_);
        close(former_);
    }
    replaced_descriptor(const replaced_descriptor&) = delete;
    replaced_descriptor& operator=(const replaced_descriptor&) = delete;
    replaced_descriptor(replaced_descriptor&&) = delete;
    replaced_descriptor& operator=(replaced_descriptor&&) = delete;

private:
    int descriptor_;
    int former_;
};

}  // namespace ifwatch::test
