#pragma once

#include <span>

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

}  // namespace ifwatch::extcap
