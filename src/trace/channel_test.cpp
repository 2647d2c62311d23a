#include "trace/channel_test.h"

#include <unistd.h>

#include <cstdint>

#include "base/print.h"
#include "trace/element.h"
#include "trace/trace_request.h"

namespace ifwatch {

namespace {

constexpr int QUIET_LEVEL = 1;
constexpr int LAST_SLOT = 8;
constexpr int LAST_CHANNEL = 31;
constexpr int COMMON_UNIT = 20;  // answered by a router whose slot has one unit only

/// The test as it goes: what each probe starts from, and what has been found.
struct channel_probe {
    const session_settings& settings;
    trace_target request;
    trace_target& found;
    bool any_found = false;
    std::int8_t channel_type = 0;  // the last reply octet that arrived
};

/// Asks on a connection of its own whether one channel can be traced.
bool probe_channel(channel_probe& test, int slot, int unit, int channel) {
    const int socket_fd = connect_trace(test.settings, QUIET_LEVEL);
    if (socket_fd < 0) {
        return false;
    }
    test.request.slot = slot;
    test.request.unit = unit;
    test.request.channel = channel;
    std::uint8_t reply = 0;
    const bool answered = send_trace_request(socket_fd, test.request) && read_n(socket_fd, &reply, 1) == 1;
    close(socket_fd);
    if (answered) {
        test.channel_type = static_cast<std::int8_t>(reply);
    }
    return answered;
}

void scan_unit(channel_probe& test, int slot, int unit) {
    int highest_channel = -1;
    for (int channel = 0; channel <= LAST_CHANNEL; ++channel) {
        if (probe_channel(test, slot, unit, channel)) {
            highest_channel = channel;
            if (!test.any_found) {
                test.any_found = true;
                test.found = test.request;
            }
        } else if (channel == 0) {
            return;
        }
    }
    print<"%5d%5d%5d  -  %d\n">(highest_channel, unit, slot, test.channel_type);
}

}  // namespace

int channel_test(const session_settings& settings, trace_target& target) {
    const int socket_fd = connect_trace(settings, QUIET_LEVEL);
    if (socket_fd < 0) {
        return 1;
    }
    close(socket_fd);
    print<"Testing available trace channels:\n">();
    print<"ChMax Unit Slot ChType\n">();
    channel_probe test{.settings = settings, .request = target, .found = target};
    bool writable = flush_output();
    for (int slot = 0; writable && slot <= LAST_SLOT; ++slot) {
        const int last_unit = probe_channel(test, slot, COMMON_UNIT, 0) ? 0 : 1;
        for (int unit = 0; unit <= last_unit; ++unit) {
            scan_unit(test, slot, unit);
            writable = flush_output();
        }
    }
    return writable ? 0 : report_output_failure();
}

}  // namespace ifwatch
