#pragma once

#include <cstddef>

#include "base/patient_write.h"
#include "base/text_sink.h"

namespace ifwatch {

/// A sink of N characters that leaves through a descriptor when it is full, up to the first failure of that, which
/// errno then tells.
template <std::size_t N>
class descriptor_buffer : public text_buffer<N> {
public:
    explicit descriptor_buffer(int to) : fd_(to) { this->drain = write_out; }

    /// Writes what is held. False when the descriptor has failed, now or before; a part may have been written then.
    [[nodiscard]] bool flush() { return write_out(*this); }

private:
    static bool write_out(text_sink& sink) {
        auto& self = static_cast<descriptor_buffer&>(sink);
        self.failed_ = self.failed_ || !write_whole(self.fd_, self.text());
        self.used = 0;
        return !self.failed_;
    }

    int fd_;
    bool failed_ = false;
};

}  // namespace ifwatch
