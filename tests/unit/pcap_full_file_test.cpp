// A PCAP file that the system lets grow by so many octets only.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <string>

#include "display/display_context.h"
#include "support/octet_pipe.h"
#include "support/replaced_descriptor.h"
#include "support/temp_directory.h"
#include "trace/pcap.h"

namespace ifwatch {
namespace {

/// While it lives, no file grows beyond so many octets, and a write that wants to fails instead of ending the program.
class file_size_limit {
public:
    explicit file_size_limit(rlim_t octets) : former_action_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former_);
        const rlimit limit{.rlim_cur = octets, .rlim_max = former_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~file_size_limit() {
        setrlimit(RLIMIT_FSIZE, &former_);
        static_cast<void>(std::signal(SIGXFSZ, former_action_));
    }
    file_size_limit(const file_size_limit&) = delete;
    file_size_limit& operator=(const file_size_limit&) = delete;
    file_size_limit(file_size_limit&&) = delete;
    file_size_limit& operator=(file_size_limit&&) = delete;

private:
    rlimit former_{};
    void (*former_action_)(int);
};

/// What is reported when a record of four octets is written to a file that takes `room` octets more.
std::string reported(rlim_t room) {
    const test::temp_directory directory;
    const int fd = open(directory.file("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    std::array<std::uint8_t, 4> data{};
    const record_header header{.timestamp_ms = 1, .record_flags = 0, .channel_info = 0, .sequence = 1};
    display_context context;
    context.header = &header;
    context.payload = octets_of(data);
    context.original_length = 4;
    octet_pipe errors;
    int result = 0;
    {
        const test::replaced_descriptor captured(2, errors.writer());
        const file_size_limit limit(room);
        result = write_pcap_record(fd, context);
    }
    EXPECT_EQ(result, -1);
    return errors.drain();
}

TEST(pcap_full_file, a_write_that_took_one_octet_is_gone_on_with) {
    EXPECT_EQ(reported(1), "ERROR write pcap datahdr ret : 1\nwrite pcap data header: File too large\n");
    EXPECT_EQ(reported(16 + 1), "ERROR write pcap data ret : 1\nwrite pcap data pkt: File too large\n");
}

}  // namespace
}  // namespace ifwatch
