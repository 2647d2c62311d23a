#include "trace/record_stream.h"

#include <array>

#include "base/byte_order.h"
#include "base/print.h"
#include "base/verbose.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "trace/element.h"
#include "trace/pcap.h"
#include "trace/record_buffer.h"

namespace ifwatch {

int announced_data(record_octets header) { return load_be16(header.data()) - RECORD_HEADER_LENGTH; }

bool can_be_held(int announced) { return announced >= 0 && announced <= RECORD_DATA_MAXIMUM; }

record_read report_no_header(int got) {
    report<"trc hdr too short! = %d<%d\n">(got, RECORD_HEADER_LENGTH);
    return got == 0 ? record_read::END : record_read::BROKEN;
}

record_read report_no_data(int got, int announced) {
    report<"data too short! %d<%ld\n">(got, announced);
    return record_read::BROKEN;
}

record_read receive_record(int socket_fd, record_buffer& buffer, display_context& context) {
    std::array<std::uint8_t, RECORD_HEADER_LENGTH> header{};
    const int got_header = read_n(socket_fd, header.data(), RECORD_HEADER_LENGTH);
    if (got_header != RECORD_HEADER_LENGTH) {
        return report_no_header(got_header);
    }
    const int captured = announced_data(header);
    const int got = can_be_held(captured) ? read_n(socket_fd, buffer.data.get(), captured) : 0;
    if (got != captured) {
        return report_no_data(got, captured);
    }
    fill_slot(buffer, std::span(header).subspan<4, PROTO_LENGTH>(), load_be16(&header[20]), captured, context);
    return record_read::RECORD;
}

int receive_records(int socket_fd, const stream_settings& settings, display_context& context) {
    record_buffer buffer;
    if (!allocate(buffer)) {
        return 1;
    }
    const bool has_sink = settings.pcap_fd > 0;
    const bool decodes = settings.pcap_fd < 0 || settings.print;
    if (has_sink && !settings.print) {
        report<"Packets captured: %8d">(0);
    }
    bool writable = flush_output();  // the session may have printed, too
    while (writable && receive_record(socket_fd, buffer, context) == record_read::RECORD) {
        if (verbose_level > 2) {
            report<"Pkt: len %lu, sequ: %lu\n">(context.payload.length, context.header->sequence);
        }
        if (has_sink) {
            // A sink that has failed is told so at each record; the display goes on.
            write_pcap_record(settings.pcap_fd, context);
        }
        if (decodes) {
            display_record(context);
        } else {
            report_count(context.header->sequence);
        }
        writable = flush_output();
    }
    return writable ? 0 : report_output_failure();
}

}  // namespace ifwatch
