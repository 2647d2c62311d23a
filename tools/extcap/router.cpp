#include "extcap/router.h"

#include <unistd.h>

#include <cstdlib>
#include <span>
#include <string_view>

#include "base/print.h"
#include "base/verbose.h"
#include "client/secret.h"
#include "display/display_context.h"
#include "extcap/credentials.h"
#include "extcap/filter.h"
#include "trace/auth.h"
#include "trace/session.h"

namespace ifwatch::extcap {

namespace {

constexpr int STATUS_MISTAKE = 2;
constexpr int NEWEST_VERSION = 3;

std::string& kept_reports() {
    static std::string text;
    return text;
}

/// From here on reports are kept, and progress is not reported.
void keep_reports() {
    verbose_level = -1;
    set_report_writer([](std::string_view text) { kept_reports() += text; });
}

/// What a session is opened with, apart from its target.
struct access {
    secret password;
    addinfo_buffer addinfo;

    [[nodiscard]] std::span<const std::uint8_t> elements() const {
        return std::span(addinfo.data).first(static_cast<std::size_t>(addinfo.used));
    }
};

bool prepare(const plugin_options& options, bool list_mode, access& with, failure& why) {
    why.status = STATUS_MISTAKE;
    if (options.host.empty()) {
        why.text = "--host is missing: which router?";
        return false;
    }
    if (!list_mode && !add_capture_filter(options.filter, with.addinfo, why.text)) {
        return false;
    }
    with.addinfo.used = build_addinfo(NEWEST_VERSION, with.addinfo.data, options.atm, list_mode, with.addinfo.used);
    return find_password(options.credentials, options.host, with.password, why.text);
}

/// Tells of a router that did not take the request for its list as this version of the protocol has it. `reports` is
/// what the session said of it.
std::string describe_listless(std::string_view reports) {
    const bool closed = reports.starts_with("missing elem") || reports.starts_with("write ");
    return closed ? "it closed the connection (perhaps it cannot list its interfaces; type the index of one)"
                  : "it cannot list its interfaces; type the index of one";
}

/// Sets the session up, once more when the first attempt names the version to use. The socket, or -1.
int open_with(const plugin_options& options, access& with, const session_settings& settings, const trace_target& target,
              display_context& context, failure& why) {
    keep_reports();
    int socket_fd = -1;
    int result = open_session(NEWEST_VERSION, socket_fd, settings, target, with.elements(), context);
    if (result > 0 && !settings.list_mode) {
        take_reports();
        result = open_session(result, socket_fd, settings, target, with.elements(), context);
    } else if (result > 0) {
        write_report(describe_listless(take_reports()));
    }
    with.password.wipe();
    wipe_password_variable();
    wipe_dead_stack();
    if (result != 0) {
        why = {1, "router " + options.host + ": " + take_reports()};
        return -1;
    }
    return socket_fd;
}

}  // namespace

int open_trace(const plugin_options& options, display_context& context, failure& why) {
    access with;
    if (!prepare(options, false, with, why)) {
        return -1;
    }
    trace_target target;
    split_interface_index(target, options.interface_index.value_or(0));
    target.capture_length = options.capture_length > 0 ? options.capture_length : -1;
    const session_settings settings{
        .host = options.host.c_str(), .port = options.port, .password = with.password.text()};
    return open_with(options, with, settings, target, context, why);
}

bool list_interfaces(const plugin_options& options, std::vector<listed_interface>& listed, failure& why) {
    access with;
    if (!prepare(options, true, with, why)) {
        return false;
    }
    const session_settings settings{.host = options.host.c_str(),
                                    .port = options.port,
                                    .password = with.password.text(),
                                    .list_mode = true,
                                    .listed = &listed};
    display_context context;
    init_display_context(context);
    const int socket_fd = open_with(options, with, settings, {}, context, why);
    if (socket_fd >= 0) {
        close(socket_fd);
    }
    return socket_fd >= 0;
}

std::string take_reports() {
    std::string reports;
    reports.swap(kept_reports());
    std::string line;
    for (std::string_view rest = reports; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        std::string_view part = rest.substr(0, end);
        rest.remove_prefix(end != std::string_view::npos ? end + 1 : rest.size());
        part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
        part.remove_prefix(part.starts_with("ERROR ") ? 6 : 0);
        if (!part.empty() && !part.starts_with("Ifc:")) {
            line += line.empty() ? "" : "; ";
            line += part;
        }
    }
    return line;
}

}  // namespace ifwatch::extcap
