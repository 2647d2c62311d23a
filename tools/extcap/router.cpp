#include "extcap/router.h"

#include <unistd.h>

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "base/print.h"
#include "base/verbose.h"
#include "client/secret.h"
#include "display/display_context.h"
#include "extcap/credentials.h"
#include "extcap/filter.h"
#include "trace/auth.h"
#include "trace/session.h"
#include "trace/trace_target.h"

namespace ifwatch::extcap {

namespace {

constexpr int STATUS_MISTAKE = 2;
constexpr int NEWEST_VERSION = 3;
constexpr const char* CLOSED = "the router closed the session during its set-up";

std::string& kept_reports() {
    static std::string text;
    return text;
}

/// From here on reports are kept, and progress is not reported.
void keep_reports() {
    verbose_level = -1;
    set_report_writer([](std::string_view text) { kept_reports() += text; });
}

/// What the session's reports say when the router ended the connection. An old one acknowledges with an octet, or with
/// none where it refuses or has something else against it.
bool tells_of_a_close(std::string_view reports) {
    return reports.starts_with("missing elem") || reports.starts_with("write ") ||
           reports.starts_with("negative trace acknowledge");
}

/// Tells of a router that did not take the request for its list as this version of the protocol has it.
std::string describe_listless(std::string_view reports) {
    return tells_of_a_close(reports)
               ? "it closed the connection (perhaps it cannot list its interfaces; type the index of one)"
               : "it cannot list its interfaces; type the index of one";
}

}  // namespace

bool router_access::prepare(failure& why) {
    keep_reports();
    why.status = STATUS_MISTAKE;
    if (options_.host.empty()) {
        why.text = "--host is missing: which router?";
        return false;
    }
    const bool captures = options_.what == call::CAPTURE;
    return (!captures || add_capture_filter(options_.filter, filters_, why.text)) &&
           find_password(options_.credentials, options_.host, password_, why.text);
}

opened_session router_access::list() {
    std::vector<listed_interface> listed;
    opened_session session = open(0, {}, &listed);
    if (session.socket_fd >= 0) {
        close(session.socket_fd);
        session.socket_fd = -1;
    }
    session.listed = std::move(listed);
    wipe_dead_stack();
    return session;
}

opened_session router_access::trace(std::int32_t index) { return open(index, filters_, nullptr); }

void router_access::forget_password() {
    password_.wipe();
    wipe_password_variable();
    wipe_dead_stack();
}

/// Sets the session up, once more when the first attempt names the version to use.
opened_session router_access::open(std::int32_t index, addinfo_buffer addinfo, std::vector<listed_interface>* listed) {
    const bool list_mode = listed != nullptr;
    trace_target target;
    split_interface_index(target, index);
    target.capture_length = options_.capture_length > 0 ? options_.capture_length : -1;
    addinfo.used = build_addinfo(NEWEST_VERSION, addinfo.data, options_.atm, list_mode, addinfo.used);
    const auto elements = std::span<const std::uint8_t>(addinfo.data).first(static_cast<std::size_t>(addinfo.used));
    const session_settings settings{.host = options_.host.c_str(),
                                    .port = options_.port,
                                    .password = password_.text(),
                                    .list_mode = list_mode,
                                    .listed = listed};
    display_context context;
    init_display_context(context);
    opened_session session;
    int result = NEWEST_VERSION;
    for (int attempt = 0; attempt < (list_mode ? 1 : 2) && result > 0; ++attempt) {
        take_reports();
        const int connected = connect_trace(settings, 0);
        if (connected < 0) {
            session.reason = take_reports();
            return session;
        }
        result = set_up_session(connected, result, session.socket_fd, settings, target, elements, context);
    }
    session.reason = take_reports();
    session.channel_type = static_cast<std::int16_t>(context.channel_type);
    const bool closed = tells_of_a_close(session.reason);
    session.result = result == 0 ? set_up::OPEN : closed ? set_up::UNREACHABLE : set_up::REFUSED;
    if (list_mode && result > 0) {
        session.reason = describe_listless(session.reason);
    } else if (result != 0 && closed) {
        session.reason = CLOSED;
    }
    return session;
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
