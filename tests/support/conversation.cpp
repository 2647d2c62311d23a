#include "support/conversation.h"

#include <algorithm>
#include <span>

namespace ifwatch::test {

namespace {

using octet_list = std::vector<std::uint8_t>;

constexpr const char* NO_HEADER = "missing elem header data";
constexpr const char* NO_DATA = "missing elem data";

const octet_list VERSION = {0, 0, 1, 2, 3};
const octet_list CHALLENGE = {0, 0, 9, 10, 1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
const octet_list REPLY = {0, 0, 2, 1, 0, CHANNEL_TYPE_LAN, 0, 0, 0, 0};

octet_list record() { return trace_record(1, octet_list(14, 0xA1)); }

conversation version_1() {
    return {.option = "-V1",
            .parts = {{TRACE_REQUEST_OCTETS, {CHANNEL_TYPE_LAN}}, {0, record()}},
            .failures = {{0, NO_TYPE, "negative trace acknowledge", false}},
            .session_octets = 1,
            .all_octets = 37};
}

conversation version_2() {
    return {.option = "-V2",
            .parts = {{TRACE_REQUEST_OCTETS + PLAIN_ADDINFO_LENGTH, REPLY}, {0, record()}},
            .failures = {{0, NO_TYPE, NO_HEADER, true},
                         {4, NO_TYPE, NO_DATA, true},
                         {6, CONVERSATION_TYPE, NO_HEADER, false}},
            .session_octets = 10,
            .all_octets = 46};
}

conversation version_3() {
    return {.option = "-V3",
            .parts = {{TRACE_REQUEST_OCTETS, VERSION},
                      {0, CHALLENGE},
                      {AUTH_REPLY_LENGTH + PLAIN_ADDINFO_LENGTH, REPLY},
                      {0, record()}},
            .failures = {{0, NO_TYPE, NO_HEADER, true},
                         {4, NO_TYPE, NO_DATA, true},
                         {5, NO_TYPE, NO_HEADER, true},
                         {9, NO_TYPE, NO_DATA, true},
                         {18, NO_TYPE, NO_HEADER, true},
                         {22, NO_TYPE, NO_DATA, true},
                         {24, CONVERSATION_TYPE, NO_HEADER, false}},
            .session_octets = 28,
            .all_octets = 64};
}

}  // namespace

void conversation::play(const tcp_peer& client, std::size_t octets) const {
    for (const part& next : parts) {
        client.receive(next.awaited);
        const std::size_t n = std::min(octets, next.sent.size());
        client.send(std::span(next.sent).first(n));
        octets -= n;
        if (n < next.sent.size()) {
            return;
        }
    }
}

const conversation::failure& conversation::failure_behind(std::size_t octets) const {
    const auto later = std::find_if(failures.begin(), failures.end(),
                                    [octets](const failure& candidate) { return candidate.from > octets; });
    return *(later - 1);
}

const std::vector<conversation>& conversations() {
    static const std::vector<conversation> ALL = {version_1(), version_2(), version_3()};
    return ALL;
}

}  // namespace ifwatch::test
