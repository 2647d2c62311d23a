#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "capture/link_types.h"

namespace ifwatch::extcap {

/// What a B-channel carries, which the router does not tell.
struct bchannel_kind {
    const char* word;   // as the option has it
    const char* title;  // as the analyser shows it
    capture::link_layer link;
};

/// All of them, the default first.
[[nodiscard]] std::span<const bchannel_kind> bchannel_kinds();

/// What the B-channels of a capture carry: "ppp,2102=lapb" is one kind for all, and another for one interface.
struct bchannel_choice {
    struct exception {
        std::int32_t index = 0;
        const bchannel_kind* kind = nullptr;
    };

    const bchannel_kind* usual = &bchannel_kinds().front();
    std::vector<exception> exceptions;

    [[nodiscard]] const bchannel_kind& of(std::int32_t index) const;
};

/// Nothing for an unknown kind, an index that is none, or more than one kind for all or for one interface.
[[nodiscard]] std::optional<bchannel_choice> parse_bchannel_choice(std::string_view text);

}  // namespace ifwatch::extcap
