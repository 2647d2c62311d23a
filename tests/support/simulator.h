#pragma once

#include <string>
#include <vector>

#include "support/process.h"
#include "support/temp_directory.h"

namespace ifwatch::test {

/// The real ifwatch-sim, serving cases given as texts on a free port of the loopback.
class simulator {
public:
    /// `options` go before the cases. Throws when it does not come up.
    explicit simulator(const std::vector<std::string>& cases, std::vector<std::string> options = {});

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] process& program() { return process_; }

    /// The command line of `watch`.
    [[nodiscard]] command watching(const std::vector<std::string>& options,
                                   const std::vector<std::string>& target = {"1000"}) const;

    /// Runs the real ifwatch against it: `options`, the password "admin", then "127.0.0.1" and what `target` gives.
    [[nodiscard]] outcome watch(const std::vector<std::string>& options,
                                const std::vector<std::string>& target = {"1000"}) const;

private:
    temp_directory directory_;
    process process_;
    int port_ = 0;
};

}  // namespace ifwatch::test
