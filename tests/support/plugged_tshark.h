#pragma once

#include <string>
#include <vector>

#include "support/process.h"
#include "support/temp_directory.h"

namespace ifwatch::test {

/// The real tshark of a user in whose home there is nothing but a link to the plug-in, in the folders of old and new
/// versions.
class plugged_tshark {
public:
    plugged_tshark();

    [[nodiscard]] command tshark(std::vector<std::string> arguments, const std::string& password = "admin") const;

    /// A capture of interfaces of the router on this port, with the fields to print.
    [[nodiscard]] command capture(int port, const std::string& interfaces, const std::vector<std::string>& options,
                                  const std::vector<std::string>& fields = {},
                                  const std::string& password = "admin") const;

private:
    temp_directory home_;
};

/// The text of one of the samples.
std::string sample(const std::string& name);

}  // namespace ifwatch::test
