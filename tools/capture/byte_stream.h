#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace ifwatch::capture {

/// The octets of a file, a pipe or a terminal as they come, read into one buffer that never grows.
class byte_stream {
public:
    static constexpr std::size_t CAPACITY = std::size_t{256} << 10;

    /// `before_read`, if there is one, is called each time before the descriptor is read: what was made of the octets
    /// so far can leave, for the next ones may be long in coming. Where it returns false, that counts as the end.
    explicit byte_stream(int fd, bool (*before_read)() = nullptr);

    /// The next octets, without moving: `wanted` of them, at most CAPACITY, or as many as there are before the end.
    /// They may be changed in place, and stay until the next call of hold() or skip().
    [[nodiscard]] std::span<std::uint8_t> hold(std::size_t wanted);

    /// Moves over so many octets, whether they are held or not. How many there were before the end.
    std::uint64_t skip(std::uint64_t count);

    /// Octets moved over so far.
    [[nodiscard]] std::uint64_t offset() const { return offset_; }

    /// The errno of a read that has failed, which counts as the end; 0: none.
    [[nodiscard]] int error() const { return error_; }

private:
    bool fill();

    int fd_;
    bool (*before_read_)();
    std::unique_ptr<std::uint8_t[]> buffer_;
    std::size_t begin_ = 0;  // of what is held
    std::size_t end_ = 0;
    std::uint64_t offset_ = 0;
    bool at_end_ = false;
    int error_ = 0;
};

}  // namespace ifwatch::capture
