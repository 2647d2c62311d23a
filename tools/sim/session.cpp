#include "sim/session.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <random>
#include <span>

#include "base/byte_order.h"
#include "sim/addinfo.h"
#include "sim/filter.h"
#include "sim/record_stream.h"
#include "trace/auth.h"
#include "trace/element.h"

namespace ifwatch::sim {

namespace {

constexpr std::size_t MAX_ERROR_TEXT = 99;  // clients read elements into 100 octets
constexpr int LOGIN_VERSION = 3;            // the first version with a login and an interface list

/// The trace request: five big-endian signed words.
struct trace_request {
    std::int32_t version = 0;
    std::int32_t slot = 0;
    std::int32_t unit = 0;
    std::int32_t channel = 0;
    std::int32_t capture_length = 0;
};

/// The version whose way a client goes that asks for this one.
int known_version(std::int32_t asked) { return asked <= 0 ? 2 : std::min(asked, LOGIN_VERSION); }

std::int64_t interface_of(const trace_request& request) {
    return 1000 * std::int64_t{request.slot} + 100 * std::int64_t{request.unit} + request.channel;
}

class session {
public:
    session(const peer& client, const daemon_setup& setup, const std::vector<cases::trace_case>& cases,
            trace_room& room)
        : client_(client), setup_(setup), cases_(cases), room_(room) {}

    session_report run() {
        serve();
        client_.finish();
        return std::move(report_);
    }

private:
    void serve();
    void refuse(int asked);
    void serve_version_1();
    void serve_version_2();
    void serve_version_3();

    bool read_request();
    bool log_in();
    bool check_login(std::span<const std::uint8_t> challenge);
    bool read_wishes();
    bool prepare(record_selection& selection);
    bool send_element(std::uint8_t type, std::span<const std::uint8_t> data = {});
    bool send_channel_type();
    void send_list();
    void stream(record_selection selection);

    void end(std::string result) { report_.result = std::move(result); }
    void send_error(std::string text);
    [[nodiscard]] const cases::trace_case* find_case() const;
    bool closes_after(session_step step);
    [[nodiscard]] const fault& trouble() const { return fault_of(setup_.faults, interface_of(request_)); }

    const peer& client_;
    const daemon_setup& setup_;
    const std::vector<cases::trace_case>& cases_;
    trace_room& room_;
    trace_request request_;
    client_wishes wishes_;
    session_report report_;
};

void session::serve() {
    if (closes_after(session_step::CONNECT) || !read_request() || closes_after(session_step::REQUEST)) {
        return;
    }
    if (trouble().kind == fault_kind::MUTE) {
        client_.wait_for_end();
        return end("nothing said");
    }
    const int asked = known_version(request_.version);
    const bool other_version = setup_.version != 0 && setup_.version != asked;
    if (other_version && setup_.on_other_version != refusal::SERVE) {
        return refuse(asked);
    }
    report_.version = other_version ? setup_.version : asked;
    if (report_.version == 1) {
        serve_version_1();
    } else if (report_.version == 2) {
        serve_version_2();
    } else {
        serve_version_3();
    }
}

/// A client of version 1 cannot be told another version. An old daemon closes the connection also when there is no
/// such interface: that is what the channel test goes by.
void session::refuse(int asked) {
    end("version " + std::to_string(request_.version) + " refused");
    const bool unknown_interface = setup_.version < LOGIN_VERSION && find_case() == nullptr;
    if (setup_.on_other_version == refusal::CLOSE || asked == 1 || unknown_interface) {
        return;
    }
    if (asked >= LOGIN_VERSION && !log_in()) {
        return;
    }
    const std::uint8_t version[] = {static_cast<std::uint8_t>(setup_.version)};
    send_element(ELEMENT_RVERSION, version);
}

/// One octet with the channel type, then the records.
void session::serve_version_1() {
    const cases::trace_case* const found = find_case();
    if (found == nullptr || !setup_.error_text.empty()) {
        return end("no interface " + std::to_string(interface_of(request_)) + ", closed");
    }
    const std::uint8_t acknowledge[] = {static_cast<std::uint8_t>(found->channel_type)};
    if (client_.send(acknowledge) && !closes_after(session_step::CHANTYPE)) {
        stream({*found, {}, {}, {}, request_.capture_length});
    }
}

/// The channel type goes out before the add-info is read: a channel test sends none, and waits for that first octet.
void session::serve_version_2() {
    if (!setup_.error_text.empty()) {
        return send_error(setup_.error_text);
    }
    if (find_case() == nullptr) {
        return end("no interface " + std::to_string(interface_of(request_)) + ", closed");
    }
    if (!send_channel_type() || closes_after(session_step::CHANTYPE) || !read_wishes()) {
        return;
    }
    record_selection selection{*find_case(), {}, {}, {}, 0};
    if (prepare(selection) && send_element(ELEMENT_END) && !closes_after(session_step::REPLY)) {
        stream(selection);
    }
}

void session::serve_version_3() {
    if (!log_in() || !read_wishes()) {
        return;
    }
    if (!setup_.error_text.empty()) {
        return send_error(setup_.error_text);
    }
    if (wishes_.list) {
        return send_list();
    }
    const cases::trace_case* const found = find_case();
    if (found == nullptr) {
        return send_error("no interface " + std::to_string(interface_of(request_)));
    }
    if (trouble().kind == fault_kind::REFUSE) {
        return send_error("interface " + std::to_string(interface_of(request_)) + " is not to be traced");
    }
    const trace_place place(room_);
    if (!place.taken()) {
        return send_error("no more than " + std::to_string(setup_.limit) + " traces at a time");
    }
    record_selection selection{*found, {}, {}, {}, 0};
    if (!prepare(selection) || !send_channel_type() || closes_after(session_step::CHANTYPE)) {
        return;
    }
    if (send_element(ELEMENT_END) && !closes_after(session_step::REPLY)) {
        stream(selection);
    }
}

bool session::read_request() {
    std::uint8_t words[20];
    if (read_n(client_.socket(), words, sizeof words) != sizeof words) {
        end("closed before the trace request");
        return false;
    }
    const auto word = [&words](std::size_t i) { return static_cast<std::int32_t>(load_be32(&words[4 * i])); };
    request_ = {word(0), word(1), word(2), word(3), word(4)};
    return true;
}

/// Version, challenge, and the client's answer to it.
bool session::log_in() {
    const std::uint8_t version[] = {LOGIN_VERSION};
    if (!send_element(ELEMENT_RVERSION, version) || closes_after(session_step::VERSION)) {
        return false;
    }
    std::random_device random;
    std::array<std::uint8_t, AUTH_LENGTH> challenge{LOGIN_VERSION};
    std::generate(challenge.begin() + 1, challenge.end(), [&] { return static_cast<std::uint8_t>(random()); });
    if (!send_element(ELEMENT_AUTH, challenge) || closes_after(session_step::CHALLENGE)) {
        return false;
    }
    return check_login(challenge) && !closes_after(session_step::LOGIN);
}

bool session::check_login(std::span<const std::uint8_t> challenge) {
    std::uint32_t header = 0;
    std::array<std::uint8_t, 100> answer{};
    if (read_element(client_.socket(), header, answer) != nullptr) {
        end("closed at the login");
        return false;
    }
    std::array<std::uint8_t, 8> digest{};
    if (header != element_header(ELEMENT_AUTH, AUTH_LENGTH) || !auth_digest(setup_.password, challenge, digest)) {
        send_error("login failed");
        return false;
    }
    unsigned difference = answer[0] ^ challenge[0];
    for (std::size_t i = 0; i < digest.size(); ++i) {
        difference |= static_cast<unsigned>(answer[i + 1] ^ digest[i]);  // every octet, so that time tells nothing
    }
    if (difference != 0) {
        send_error("wrong password");
    }
    return difference == 0;
}

bool session::read_wishes() {
    const std::string problem = read_addinfo(client_.socket(), wishes_);
    if (!problem.empty()) {
        send_error(problem);
        return false;
    }
    return !closes_after(session_step::ADDINFO);
}

/// Takes the client's wishes into the selection. False when they cannot be met; the client has been told then.
bool session::prepare(record_selection& selection) {
    std::string problem = wishes_.start ? "" : "nothing asked for";
    if (!problem.empty() || !build_filter(wishes_.filters, selection.filter, problem)) {
        send_error(problem);
        return false;
    }
    selection.vpi = wishes_.vpi;
    selection.vci = wishes_.vci;
    selection.capture_length = request_.capture_length;
    return true;
}

bool session::send_element(std::uint8_t type, std::span<const std::uint8_t> data) {
    const fault& trouble = this->trouble();
    const bool wrong = trouble.kind == fault_kind::ELEMENT_LENGTH && trouble.element == type;
    const auto length = wrong ? trouble.length : static_cast<std::uint32_t>(data.size());
    std::vector<std::uint8_t> element(4);
    store_be32(element.data(), element_header(type, length));
    element.insert(element.end(), data.begin(), data.end());
    return client_.send(element);
}

/// One octet where the code fits, otherwise two.
bool session::send_channel_type() {
    const int code = find_case()->channel_type;
    std::uint8_t octets[2];
    store_be16(octets, static_cast<std::uint16_t>(code));
    const bool one = code >= 0 && code <= 0xFF;
    return send_element(ELEMENT_CHANTYPE, std::span(octets).subspan(one ? 1 : 0));
}

void session::send_list() {
    for (const cases::trace_case& listed : cases_) {
        std::uint8_t info[8] = {};
        store_be32(info, *listed.interface_index);
        store_be16(info + 4, static_cast<std::uint16_t>(listed.channel_type));
        if (!send_element(ELEMENT_INFO, info)) {
            return;
        }
    }
    send_element(ELEMENT_END);
    end("interfaces listed");
}

void session::stream(record_selection selection) {
    report_.traced = true;
    if (!room_.begin(client_)) {
        return end("trace of interface " + std::to_string(interface_of(request_)) + " not begun");
    }
    if (setup_.together != 0) {
        selection.start = {room_.start(), room_.origin_ms()};
    }
    report_.records = send_records(client_, setup_, trouble(), selection);
    end("trace of interface " + std::to_string(interface_of(request_)) + " ended");
}

void session::send_error(std::string text) {
    text.resize(std::min(text.size(), MAX_ERROR_TEXT));
    const std::vector<std::uint8_t> data(text.begin(), text.end());
    send_element(ELEMENT_ERROR, data);
    end("error sent: " + text);
}

const cases::trace_case* session::find_case() const {
    const std::int64_t wanted = interface_of(request_);
    const auto found = std::find_if(cases_.begin(), cases_.end(), [wanted](const cases::trace_case& served) {
        return *served.interface_index == wanted;
    });
    return found == cases_.end() ? nullptr : &*found;
}

bool session::closes_after(session_step step) {
    if (setup_.close_after == step) {
        end("closed early");
    }
    return setup_.close_after == step;
}

}  // namespace

session_report serve_session(const peer& client, const daemon_setup& setup, const std::vector<cases::trace_case>& cases,
                             trace_room& room) {
    return session(client, setup, cases, room).run();
}

}  // namespace ifwatch::sim
