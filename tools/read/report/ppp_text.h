#pragma once

#include "base/text_sink.h"
#include "read/report/ppp_tracker.h"

namespace ifwatch::reporting {

/// Writes the row of a link.
void put_ppp_link(text_sink& out, const ppp_link& link);

}  // namespace ifwatch::reporting
