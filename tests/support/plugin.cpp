#include "support/plugin.h"

#include <chrono>
#include <utility>

#include "support/programs.h"
#include "support/scripted_daemon.h"

namespace ifwatch::test {

command plugin(std::vector<std::string> arguments, const std::string& password) {
    command what = {
        .program = IFWATCH_EXTCAP_PROGRAM, .arguments = std::move(arguments), .timeout = std::chrono::seconds(60)};
    what.environment = {{"TRACE_PWD", password}};
    return what;
}

std::vector<std::string> capture_arguments(int port, const std::string& fifo, const std::vector<std::string>& more,
                                           const std::string& interfaces) {
    std::vector<std::string> all = {
        "--capture", "--extcap-interface", "ifwatch",     "--fifo",  fifo, "--host", "127.0.0.1",
        "--port",    std::to_string(port), "--interface", interfaces};
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

command reload(int port) {
    return plugin({"--extcap-config", "--extcap-interface", "ifwatch", "--extcap-reload-option", "interface", "--host",
                   "127.0.0.1", "--port", std::to_string(port), "--interface", ""});
}

int free_port() {
    return scripted_daemon([](const tcp_peer& /*client*/) {}).port();
}

}  // namespace ifwatch::test
