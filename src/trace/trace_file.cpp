#include "trace/trace_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/byte_order.h"
#include "base/print.h"
#include "display/record_display.h"
#include "trace/element.h"
#include "trace/ifc_types.h"
#include "trace/record_buffer.h"
#include "trace/record_stream.h"

namespace ifwatch {

namespace {

constexpr int LENGTH_FIELDS = 4;  // octets of a record's two length fields

int open_trace_file(const char* name) {
    if (std::string_view(name) == "-") {
        return STDIN_FILENO;
    }
    const int fd = open(name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        report<"ERROR: Cannot open trace file %s (%s)\n">(name, std::strerror(errno));
        std::exit(EXIT_FAILURE);
    }
    return fd;
}

template <std::size_t N>
bool read_field(int fd, std::array<std::uint8_t, N>& field, const char* what_is_short) {
    if (read_n(fd, field.data(), static_cast<int>(N)) == static_cast<int>(N)) {
        return true;
    }
    report<"%s too short!\n">(what_is_short);
    return false;
}

/// Reads the frame behind the protocol part. False at the end of the file.
bool read_frame(int fd, int captured, std::uint32_t& original_length, std::uint8_t* data) {
    std::array<std::uint8_t, 2> length{};
    if (!read_field(fd, length, "data len")) {
        return false;
    }
    original_length = load_be16(length.data());
    const bool fits = captured >= 0 && captured <= RECORD_DATA_MAXIMUM;
    const int got = fits ? read_n(fd, data, captured) : 0;
    if (got != captured) {
        report<"data too short! (%d instead of %ld)\n">(got, captured);
        return false;
    }
    return true;
}

bool read_record(int fd, record_buffer& buffer, display_context& context) {
    std::array<std::uint8_t, 2> record_length{};
    std::array<std::uint8_t, 2> proto_length{};
    std::array<std::uint8_t, PROTO_LENGTH> protocol_part{};
    if (!read_field(fd, record_length, "msg1") || !read_field(fd, proto_length, "proto len")) {
        return false;
    }
    if (load_be16(proto_length.data()) != PROTO_LENGTH) {
        report<"cannot handle proto msg part, len differs %d!\n">(load_be16(proto_length.data()));
        return false;
    }
    if (!read_field(fd, protocol_part, "proto part")) {
        return false;
    }
    std::uint32_t original_length = 0;
    int captured = 0;
    if (load_be16(record_length.data()) > LENGTH_FIELDS + PROTO_LENGTH) {
        captured = load_be16(record_length.data()) - RECORD_HEADER_LENGTH;
        if (!read_frame(fd, captured, original_length, buffer.data.get())) {
            return false;
        }
    }
    fill_slot(buffer, protocol_part, original_length, captured, context);
    return true;
}

int read_records(int fd, const trace_target& target, display_context& context) {
    record_buffer buffer;
    if (!allocate(buffer)) {
        return 1;
    }
    std::uint8_t acknowledge = 0;
    if (read_n(fd, &acknowledge, 1) != 1) {
        report_line(target, false, -1, "negative trace acknowledge");
        return 1;
    }
    context.channel_type = static_cast<std::int8_t>(acknowledge);
    report_line(target, false, context.channel_type, "trace start");
    bool writable = true;
    while (writable && read_record(fd, buffer, context)) {
        display_record(context);
        writable = flush_output();
    }
    return writable ? 0 : report_output_failure();
}

}  // namespace

int read_trace_file(const char* name, const trace_target& target, display_context& context) {
    const int fd = open_trace_file(name);
    const int status = read_records(fd, target, context);
    if (fd != STDIN_FILENO) {
        close(fd);
    }
    return status;
}

}  // namespace ifwatch
