#include "support/plugged_tshark.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "support/programs.h"

namespace ifwatch::test {

namespace {

// An analyser takes its time to start on a busy machine.
constexpr auto PATIENCE = std::chrono::seconds(60);

}  // namespace

plugged_tshark::plugged_tshark() {
    for (const char* folder : {".config/wireshark/extcap", ".local/lib/wireshark/extcap"}) {
        std::filesystem::create_directories(home_.file(folder));
        std::filesystem::create_symlink(IFWATCH_EXTCAP_PROGRAM, home_.file(folder) + "/ifwatch-extcap");
    }
}

command plugged_tshark::tshark(std::vector<std::string> arguments, const std::string& password) const {
    command what = {.program = "tshark", .arguments = std::move(arguments), .timeout = PATIENCE};
    what.environment = {{"HOME", home_.path()},
                        {"XDG_CONFIG_HOME", home_.file(".config")},
                        {"WIRESHARK_CONFIG_DIR", home_.file(".config/wireshark")},
                        {"TMPDIR", home_.path()},
                        {"TRACE_PWD", password}};
    return what;
}

command plugged_tshark::capture(int port, const std::string& interfaces, const std::vector<std::string>& options,
                                const std::vector<std::string>& fields, const std::string& password) const {
    std::vector<std::string> all = {"-n", "-l",
                                    "-i", "ifwatch",
                                    "-o", "extcap.ifwatch.host:127.0.0.1",
                                    "-o", "extcap.ifwatch.port:" + std::to_string(port),
                                    "-o", "extcap.ifwatch.interface:" + interfaces};
    all.insert(all.end(), options.begin(), options.end());
    if (!fields.empty()) {
        all.insert(all.end(), {"-T", "fields"});
    }
    for (const std::string& field : fields) {
        all.insert(all.end(), {"-e", field});
    }
    return tshark(all, password);
}

std::string sample(const std::string& name) {
    std::string text;
    if (!read_file(std::string(SAMPLES_DIRECTORY) + "/" + name + ".case", text)) {
        throw std::runtime_error("there is no sample " + name);
    }
    return text;
}

}  // namespace ifwatch::test
