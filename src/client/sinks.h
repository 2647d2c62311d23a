#pragma once

#include <climits>

#include "base/text_sink.h"
#include "client/options.h"

namespace ifwatch {

/// The named pipe or the file that the PCAP records go to. A pipe is removed when the sink goes out of scope, or when a
/// signal ends the run; a file stays.
class pcap_sink {
public:
    pcap_sink() = default;
    ~pcap_sink();
    pcap_sink(const pcap_sink&) = delete;
    pcap_sink& operator=(const pcap_sink&) = delete;
    pcap_sink(pcap_sink&&) = delete;
    pcap_sink& operator=(pcap_sink&&) = delete;

    /// Makes way for the sink that the settings choose, creates it, starts the analyser when that is wanted, and opens
    /// it; a pipe waits here until somebody reads it. False after a message.
    bool open(const options& settings);

    /// -1 until the sink is open.
    [[nodiscard]] int fd() const { return fd_; }

private:
    text_buffer<PATH_MAX> name_;
    int fd_ = -1;
};

}  // namespace ifwatch
