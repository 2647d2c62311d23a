#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ifwatch::read {

/// What became of the packets of a run.
class shown_counts {
public:
    void add_shown() { ++shown_; }
    void add_too_short() { ++too_short_; }

    /// A packet of a link type that no decoder takes. Counted by type up to MAX_TYPES of them, and those beyond in one.
    void add_undecoded(std::uint32_t link_type);
    static constexpr std::size_t MAX_TYPES = 16;

    /// "123 packets shown, 4 of link type 195 (no decoder)".
    [[nodiscard]] std::string text() const;

    [[nodiscard]] std::uint64_t shown() const { return shown_; }

private:
    struct type_count {
        std::uint32_t link_type;
        std::uint64_t packets;
    };

    std::uint64_t shown_ = 0;
    std::uint64_t too_short_ = 0;
    std::uint64_t of_further_types_ = 0;
    std::vector<type_count> undecoded_;
};

}  // namespace ifwatch::read
