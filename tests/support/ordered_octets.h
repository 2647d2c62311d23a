#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ifwatch::test {

/// Octets of a file put together number by number, in either byte order. `File` is the class that adds to this one what
/// its format has; every function returns it.
template <typename File>
class ordered_octets {
public:
    explicit ordered_octets(bool big_endian = false) : big_endian_(big_endian) {}

    File& half(std::uint32_t value) { return number(value, 2); }
    File& word(std::uint32_t value) { return number(value, 4); }
    File& long_word(std::uint64_t value) { return number(value, 8); }
    File& data(std::span<const std::uint8_t> octets) {
        octets_.insert(octets_.end(), octets.begin(), octets.end());
        return file();
    }
    /// The same, with zeros behind up to a multiple of 4 octets of the file.
    File& padded(std::span<const std::uint8_t> octets) {
        data(octets);
        octets_.resize((octets_.size() + 3) / 4 * 4);
        return file();
    }

    [[nodiscard]] bool big_endian() const { return big_endian_; }
    [[nodiscard]] const std::vector<std::uint8_t>& octets() const { return octets_; }
    [[nodiscard]] std::string text() const { return {octets_.begin(), octets_.end()}; }

private:
    File& file() { return static_cast<File&>(*this); }
    File& number(std::uint64_t value, int octets) {
        for (int i = 0; i < octets; ++i) {
            octets_.push_back(static_cast<std::uint8_t>(value >> (8 * (big_endian_ ? octets - 1 - i : i))));
        }
        return file();
    }

    bool big_endian_;
    std::vector<std::uint8_t> octets_;
};

}  // namespace ifwatch::test
