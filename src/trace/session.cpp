#include "trace/session.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "base/byte_order.h"
#include "base/hex_dump.h"
#include "base/print.h"
#include "base/verbose.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "trace/auth.h"
#include "trace/element.h"
#include "trace/ifc_types.h"
#include "trace/trace_request.h"

namespace ifwatch {

namespace {

constexpr int TRY_VERSION_1 = 1;  // for a daemon that did not speak its first element
constexpr int FAILED = -1;
constexpr int BUFFER_SIZE = 100;
constexpr int INFO_LENGTH = 8;
constexpr int ELEMENTS_MAXIMUM = 1000000;  // of one reply, its end element included
constexpr int TYPE_LAN_8023 = 7;
constexpr const char* WRONG_ELEMENT = "received wrong ELEM";

/// What a handler of a reply element makes of it.
enum class reply_step { NEXT_ELEMENT, COMPLETE, BROKEN };

/// One attempt to set up a session.
struct attempt {
    int socket_fd = -1;
    const session_settings& settings;
    const trace_target& target;
    std::int16_t channel_type = -1;
    int retry_version = TRY_VERSION_1;
    const char* error = "";  // for the report line

    std::uint32_t header = 0;                      // of the element read last
    std::array<std::uint8_t, BUFFER_SIZE> data{};  // and its data, zeros behind them

    [[nodiscard]] int type() const { return element_type_of(header); }
    [[nodiscard]] int received_length() const { return static_cast<int>(header >> 8); }
    [[nodiscard]] int data_length() const { return static_cast<int>(element_data_length(header)); }
};

/// Diagnostics at the highest level: a message as it went over the wire.
void dump_message(std::span<std::uint8_t> message) {
    if (verbose_level > 2) {
        hex_dump(octets_of(message), static_cast<int>(message.size()), 16, 0);
        flush_output();
    }
}

void dump_message(std::span<const std::uint8_t> message) {
    std::array<std::uint8_t, 1024> copy{};
    const std::size_t length = std::min(message.size(), copy.size());
    std::copy_n(message.begin(), length, copy.begin());
    dump_message(std::span(copy).first(length));
}

bool next_element(attempt& session) {
    session.data.fill(0);
    session.error = read_element(session.socket_fd, session.header, session.data);
    return session.error == nullptr;
}

bool send_request(const attempt& session, int version) {
    trace_target target = session.target;
    target.version = version;
    if (!send_trace_request(session.socket_fd, target)) {
        report<"ERROR write (%s)\n">(std::strerror(errno));
        return false;
    }
    return true;
}

bool send_addinfo(const attempt& session, std::span<const std::uint8_t> elements) {
    if (!write_all(session.socket_fd, elements)) {
        report<"ERROR write addinfo (%s)\n">(std::strerror(errno));
        return false;
    }
    return true;
}

/// Version 3: the daemon names its version. False with the error noted.
bool receive_version(attempt& session) {
    if (!next_element(session)) {
        return false;
    }
    if (session.header != element_header(ELEMENT_RVERSION, 1)) {
        session.error = "no RVERSION received";
        return false;
    }
    if (verbose_level > 0) {
        report<"got RVERSION %d\n">(session.data[0]);
    }
    return true;
}

/// Version 3: takes the daemon's challenge and makes the reply element. False with the error noted.
bool answer_challenge(attempt& session, std::span<std::uint8_t, 4 + AUTH_LENGTH> reply) {
    if (!next_element(session)) {
        return false;
    }
    if (session.type() != ELEMENT_AUTH) {
        session.error = "no authentication received";
        return false;
    }
    store_be32(reply.data(), element_header(ELEMENT_AUTH, AUTH_LENGTH));
    const auto challenge = std::span(session.data).first(static_cast<std::size_t>(session.data_length()));
    if (calc_auth(session.settings.password, challenge, reply.subspan<4, AUTH_LENGTH>()) != 0) {
        session.error = "cannot calc authentication";
        return false;
    }
    return true;
}

reply_step take_chantype(attempt& session) {
    switch (session.received_length()) {
        case 1:
            session.channel_type = session.data[0];
            break;
        case 2:
            session.channel_type = static_cast<std::int16_t>(load_be16(session.data.data()));
            break;
        default:
            report<"wrong CHANTYPE len %d\n">(session.received_length());
    }
    return reply_step::NEXT_ELEMENT;
}

reply_step take_rversion(attempt& session) {
    session.retry_version = session.data[0] != 0 ? session.data[0] : FAILED;
    return reply_step::NEXT_ELEMENT;
}

reply_step take_info(attempt& session) {
    if (session.received_length() != INFO_LENGTH) {
        report<"wrong INFO elem len %d != %d\n">(session.received_length(), INFO_LENGTH);
        return reply_step::NEXT_ELEMENT;
    }
    session.channel_type = static_cast<std::int16_t>(load_be16(&session.data[4]));
    std::uint32_t index = load_be32(session.data.data());
    if (session.channel_type == TYPE_LAN_8023) {
        index &= ~3U;
    }
    if (session.settings.listed != nullptr) {
        session.settings.listed->push_back({index, session.channel_type});
        return reply_step::NEXT_ELEMENT;
    }
    report<"Ifc: %7d Type: %3d (%s)\n">(index, session.channel_type, ifc_type_entry(session.channel_type).name);
    return reply_step::NEXT_ELEMENT;
}

reply_step take_error(attempt& session) {
    // The buffer is longer than any element's data, so that the text is terminated.
    session.error = reinterpret_cast<const char*>(session.data.data());
    return reply_step::BROKEN;
}

reply_step take_element(attempt& session) {
    switch (session.type()) {
        case ELEMENT_END:
            return reply_step::COMPLETE;
        case ELEMENT_CHANTYPE:
            return take_chantype(session);
        case ELEMENT_RVERSION:
            return take_rversion(session);
        case ELEMENT_IGNORED:
            return reply_step::NEXT_ELEMENT;
        case ELEMENT_ERROR:
            return take_error(session);
        case ELEMENT_INFO:
            return take_info(session);
        default:
            report<"received elem %08x\n">(session.header);
            session.error = WRONG_ELEMENT;
            return reply_step::BROKEN;
    }
}

/// Reads the daemon's reply up to its end element. False with the error noted. A reply that shows no end is given up.
bool receive_reply(attempt& session) {
    reply_step step = reply_step::NEXT_ELEMENT;
    for (int elements = 0; step == reply_step::NEXT_ELEMENT; ++elements) {
        if (elements == ELEMENTS_MAXIMUM) {
            session.error = "too many elements";
            session.retry_version = FAILED;
            return false;
        }
        if (!next_element(session)) {
            return false;
        }
        session.retry_version = FAILED;
        if (verbose_level > 1) {
            report<"got ELEM %d (len %d)\n">(session.type(), session.received_length());
        }
        dump_message(std::span(session.data).first(static_cast<std::size_t>(session.data_length())));
        step = take_element(session);
    }
    return step == reply_step::COMPLETE;
}

int finish(attempt& session, int& socket_out, display_context& context) {
    socket_out = session.socket_fd;
    context.channel_type = session.channel_type;
    report_line(session.target, session.settings.list_mode, session.channel_type, "");
    apply_default_flags(context);
    return 0;
}

/// Ends a failed attempt whose message has been printed.
int give_up(const attempt& session, int result) {
    close(session.socket_fd);
    return result;
}

int fail(const attempt& session) {
    report_line(session.target, session.settings.list_mode, session.channel_type, session.error);
    return give_up(session, session.retry_version);
}

/// Version 1: the daemon acknowledges with one octet, the channel type.
int acknowledged(attempt& session, int& socket_out, display_context& context) {
    std::uint8_t acknowledge = 0;
    if (read_n(session.socket_fd, &acknowledge, 1) != 1) {
        session.error = "negative trace acknowledge";
        session.retry_version = FAILED;
        return fail(session);
    }
    session.channel_type = static_cast<std::int8_t>(acknowledge);
    return finish(session, socket_out, context);
}

/// Version 3: exchanges versions and logs in. 0, or what open_session is to return; the attempt has then ended.
int log_in(attempt& session) {
    std::array<std::uint8_t, 4 + AUTH_LENGTH> reply{};
    if (!receive_version(session) || !answer_challenge(session, reply)) {
        return fail(session);
    }
    if (!send_addinfo(session, reply)) {
        return give_up(session, TRY_VERSION_1);
    }
    if (verbose_level >= 2) {
        report<"written AUTH (len %d)\n">(static_cast<int>(reply.size()));
    }
    dump_message(std::span<const std::uint8_t>(reply));
    return 0;
}

}  // namespace

int open_session(int version, int& socket_out, const session_settings& settings, const trace_target& target,
                 std::span<const std::uint8_t> addinfo, display_context& context) {
    socket_out = -1;
    const int socket_fd = connect_trace(settings, 0);
    return socket_fd < 0 ? FAILED : set_up_session(socket_fd, version, socket_out, settings, target, addinfo, context);
}

int set_up_session(int socket_fd, int version, int& socket_out, const session_settings& settings,
                   const trace_target& target, std::span<const std::uint8_t> addinfo, display_context& context) {
    socket_out = -1;
    attempt session{.socket_fd = socket_fd, .settings = settings, .target = target};
    if (!send_request(session, version)) {
        return give_up(session, FAILED);
    }
    if (version == 1) {
        return acknowledged(session, socket_out, context);
    }
    if (version > 2) {
        if (const int failed = log_in(session); failed != 0) {
            return failed;
        }
    }
    if (!send_addinfo(session, addinfo)) {
        return give_up(session, TRY_VERSION_1);
    }
    if (verbose_level > 1) {
        report<"written addinfo len:%d\n">(static_cast<int>(addinfo.size()));
    }
    dump_message(addinfo);
    return receive_reply(session) ? finish(session, socket_out, context) : fail(session);
}

}  // namespace ifwatch
