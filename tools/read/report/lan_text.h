#pragma once

#include "base/text_sink.h"
#include "read/report/lan_tracker.h"

namespace ifwatch::reporting {

/// Writes what went wrong between two hosts, and how often.
void put_lan_failure(text_sink& out, const lan_failure& failure);

}  // namespace ifwatch::reporting
