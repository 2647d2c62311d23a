#pragma once

#include "trace/connect.h"
#include "trace/trace_target.h"

namespace ifwatch {

/// Probes the ISDN channels of a router that cannot list its interfaces, and prints a line for each unit that has any:
/// the highest channel, unit, slot and channel type. The first channel found becomes the target. Returns 0, or 1 when
/// the router cannot be reached at all or the standard output failed.
int channel_test(const session_settings& settings, trace_target& target);

}  // namespace ifwatch
