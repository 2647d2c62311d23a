#include "trace/trace_request.h"

#include <array>

#include "base/print.h"
#include "base/verbose.h"
#include "trace/element.h"

namespace ifwatch {

bool send_trace_request(int socket_fd, const trace_target& target) {
    std::array<std::uint8_t, TRACE_REQUEST_LENGTH> request{};
    encode_trace_request(target, request);
    if (!write_all(socket_fd, request)) {
        return false;
    }
    if (verbose_level > 1) {
        report<"written vtrace: V.%d, %d/%d/%d tlen: %d\n">(target.version, target.slot, target.unit, target.channel,
                                                            target.capture_length);
    }
    return true;
}

}  // namespace ifwatch
