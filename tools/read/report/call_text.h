#pragma once

#include "base/text_sink.h"
#include "read/report/call_tracker.h"
#include "read/report/journal.h"

namespace ifwatch::reporting {

/// Writes a call as one row: direction, numbers, service, channel, times, and who cleared it why.
void put_call(text_sink& out, const call_record& call, const journal& about);

/// Says what was wrong with a call that is over, or still lasts at the end: nobody answered its SETUP, or it was
/// cleared with a cause that is none of everyday.
void conclude_call(const call_record& call, const journal& about);

}  // namespace ifwatch::reporting
