#pragma once

#include "cases/case_file.h"
#include "display/display_context.h"
#include "trace/record_stream.h"

namespace ifwatch::test {

/// Makes a record of a case the current one of `context`, for as long as the record and `header`, which is filled, are
/// there.
inline void make_current(display_context& context, cases::case_record& record, record_header& header) {
    header = {.timestamp_ms = record.timestamp_ms,
              .record_flags = record.flags,
              .channel_info = record.info,
              .sequence = record.sequence};
    context.header = &header;
    context.payload = octets_of(record.data);
    context.original_length = record.data.empty() ? 0 : record.original_length;
}

}  // namespace ifwatch::test
