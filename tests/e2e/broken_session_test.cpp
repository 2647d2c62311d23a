// A connection that ends behind each octet of the daemon in turn, in all three versions: closed, or broken off. What
// the client tells, whether it tries version 1, and how it ends.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "support/conversation.h"
#include "support/process.h"
#include "support/scripted_daemon.h"
#include "support/session_script.h"

namespace ifwatch::test {
namespace {

constexpr std::size_t RECORD_HEADER = 22;

struct breaking {
    int version;
    bool reset;
};

void PrintTo(const breaking& test, std::ostream* out) {
    *out << "version_" << test.version << (test.reset ? "_reset" : "_closed");
}

class broken_session : public testing::TestWithParam<breaking> {
protected:
    const conversation& talk = conversations()[static_cast<std::size_t>(GetParam().version - 1)];

    /// How a session ends behind so many octets.
    [[nodiscard]] std::string last_message(std::size_t octets) const {
        const std::string got = GetParam().reset ? "-1" : "0";
        const std::size_t of_record = octets - talk.session_octets;
        return of_record >= RECORD_HEADER && octets < talk.all_octets ? "data too short! " + got + "<14\n"
                                                                      : "trc hdr too short! = " + got + "<22\n";
    }

    /// The daemon ends the first connection behind so many octets. The second one is a session of version 1.
    [[nodiscard]] std::vector<scripted_daemon::script> ending_behind(std::size_t octets,
                                                                     std::atomic<int>& second_version) const {
        return {[this, octets](const tcp_peer& client) {
                    talk.play(client, octets);
                    if (GetParam().reset) {
                        client.reset();
                    }
                },
                [&second_version](const tcp_peer& client) {
                    second_version = version_of(client.receive(TRACE_REQUEST_OCTETS));
                    client.send({0});
                }};
    }
};

TEST_P(broken_session, is_told_behind_each_octet) {
    for (std::size_t octets = 0; octets <= talk.all_octets; ++octets) {
        std::atomic<int> second_version = 0;
        const scripted_daemon daemon(ending_behind(octets, second_version));
        const outcome got = trace(daemon, {talk.option, "-t", "--pwd=x", "127.0.0.1", "1000"});
        std::string errors = connected_to(daemon);
        bool tries_again = false;
        if (octets < talk.session_octets) {
            const conversation::failure& failure = talk.failure_behind(octets);
            tries_again = failure.tries_again;
            errors += report_of(failure.type, failure.text);
            errors += tries_again ? connected_to(daemon) + report_of("0 (ISDN D-channel)", "") + STREAM_END : "";
        } else {
            errors += report_of(CONVERSATION_TYPE, "") + last_message(octets);
        }
        const bool traced = octets >= talk.session_octets || tries_again;
        ASSERT_EQ(got.errors, errors) << octets;
        ASSERT_EQ(got.output, octets == talk.all_octets ? CONVERSATION_RECORD : "") << octets;
        ASSERT_EQ(got.status, traced ? 0 : 1) << octets;
        ASSERT_EQ(second_version, tries_again ? 1 : 0) << octets;
    }
}

INSTANTIATE_TEST_SUITE_P(connections, broken_session,
                         testing::Values(breaking{1, false}, breaking{1, true}, breaking{2, false}, breaking{2, true},
                                         breaking{3, false}, breaking{3, true}),
                         [](const auto& test) { return testing::PrintToString(test.param); });

}  // namespace
}  // namespace ifwatch::test
