#include "capture/byte_stream.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ifwatch::capture {

byte_stream::byte_stream(int fd, bool (*before_read)())
    : fd_(fd), before_read_(before_read), buffer_(new std::uint8_t[CAPACITY]) {}

std::span<std::uint8_t> byte_stream::hold(std::size_t wanted) {
    wanted = std::min(wanted, CAPACITY);
    if (wanted > end_ - begin_) {
        std::memmove(buffer_.get(), &buffer_[begin_], end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
        while (end_ < wanted && fill()) {
        }
    }
    return {&buffer_[begin_], std::min(wanted, end_ - begin_)};
}

std::uint64_t byte_stream::skip(std::uint64_t count) {
    std::uint64_t skipped = 0;
    while (true) {
        const std::size_t step = static_cast<std::size_t>(std::min<std::uint64_t>(count - skipped, end_ - begin_));
        begin_ += step;
        offset_ += step;
        skipped += step;
        if (skipped == count) {
            return skipped;
        }
        begin_ = 0;
        end_ = 0;
        if (!fill()) {
            return skipped;
        }
    }
}

/// Reads once, behind what is held. False at the end.
bool byte_stream::fill() {
    while (!at_end_) {
        if (before_read_ != nullptr && !before_read_()) {
            at_end_ = true;
            return false;
        }
        const ssize_t got = read(fd_, &buffer_[end_], CAPACITY - end_);
        if (got > 0) {
            end_ += static_cast<std::size_t>(got);
            return true;
        }
        if (got == 0 || errno != EINTR) {
            error_ = got < 0 ? errno : 0;
            at_end_ = true;
        }
    }
    return false;
}

}  // namespace ifwatch::capture
