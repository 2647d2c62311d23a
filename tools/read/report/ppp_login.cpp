#include "read/report/ppp_login.h"

#include <string>
#include <string_view>

#include "ppp/protocol_names.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using stage = ppp_login::stage;

constexpr int PAP_REQUEST = 1;
constexpr int PAP_ACK = 2;
constexpr int PAP_NAK = 3;
constexpr int CHAP_CHALLENGE = 1;
constexpr int CHAP_RESPONSE = 2;
constexpr int CHAP_SUCCESS = 3;
constexpr int CHAP_FAILURE = 4;

constexpr int MANY_TRIES = 3;

std::string quoted_name(const ppp_login& login) {
    return login.name.empty() ? "a user without a name" : quoted_text(login.name.view());
}

/// "PAP", or with what the other end has said: "PAP: 'bad password'".
std::string result_text(const ppp_login& login) {
    std::string text(ppp_protocol_name(login.protocol).view());
    if (!login.message.empty()) {
        text.append(": ").append(quoted_text(login.message.view()));
    }
    return text;
}

/// The text behind a length octet; an empty one where it would reach beyond the packet.
octets counted_text(octets from) {
    const octets text = from.skip(1);
    return from[0] <= text.within() ? text.cut(from[0]) : octets{};
}

/// The name and the password in a PAP request. Where what stands behind the name is no password of the length that it
/// tells, the name may be one that reaches into the password: then there is neither.
void take_credentials(ppp_login& login, octets request) {
    const octets name = counted_text(request);
    const octets password = request.skip(1 + name.within());
    const bool whole = password[0] < password.within();
    login.name.assign(whole ? name : octets{});
    login.password.assign(whole ? counted_text(password) : octets{});
}

/// What the other end says of a login that it refuses; nothing where it repeats the password.
octets without_password(octets message, const ppp_login& login) {
    const octets password = login.password.view();
    const std::string_view said = message.text(0, message.within());
    const bool repeats =
        !login.password.empty() && said.find(password.text(0, password.within())) != std::string_view::npos;
    return repeats ? octets{} : message;
}

/// What the login waits for, for the first time or once more.
void wait_for_answer(ppp_login& login, const journal& about, place at, int protocol, stage reached) {
    if (login.reached != reached || login.tries == 0) {
        login.first = at;
        login.lost = about.lost;
        login.tries = 0;
    }
    login.reached = reached;
    login.protocol = protocol;
    login.last = at;
    login.message.clear();
    ++login.tries;
}

void end_login(ppp_login& login, const link_ends& ends, const journal& about, place at, int refusing_end, int protocol,
               stage reached, octets message) {
    if (login.reached == stage::NONE) {
        login.first = at;
        login.protocol = protocol;
    }
    login.reached = reached;
    login.accepted = reached == stage::ACCEPTED;
    login.tries = 0;
    login.message.assign(reached == stage::REFUSED ? without_password(message, login) : octets{});
    login.password.clear();
    if (reached != stage::REFUSED || !about.troubles->wants_words()) {
        return;
    }
    if (ends.router == link_ends::UNKNOWN) {
        tell_trouble<"the login of %s was refused (%s)">(about, at, quoted_name(login), result_text(login));
    } else {
        tell_trouble<"%s refused the login of %s (%s)">(about, at, ends.name(refusing_end), quoted_name(login),
                                                        result_text(login));
    }
}

/// The end that logs in, seen from the end that a result comes from: the other one, but where directions are unknown.
ppp_login& login_at(ppp_logins& logins, const link_ends& ends, int end) {
    const bool other_waits = logins[static_cast<std::size_t>(1 - end)].reached != stage::NONE;
    return logins[static_cast<std::size_t>(other_waits || ends.both() ? 1 - end : end)];
}

}  // namespace

void take_login(ppp_logins& logins, const link_ends& ends, const journal& about, const frame& what, int end,
                int protocol, const control_packet& packet) {
    ppp_login& own = logins[static_cast<std::size_t>(end)];
    ppp_login& other = login_at(logins, ends, end);
    const bool pap = protocol == PROTOCOL_PAP;
    if (pap && packet.code == PAP_REQUEST) {
        wait_for_answer(own, about, what.at, protocol, stage::ANSWERED);
        take_credentials(own, packet.data);
    } else if (!pap && packet.code == CHAP_CHALLENGE) {
        wait_for_answer(other, about, what.at, protocol, stage::CHALLENGED);
    } else if (!pap && packet.code == CHAP_RESPONSE) {
        if (own.reached == stage::NONE && other.reached == stage::CHALLENGED) {
            other = {};  // its challenge came when only one direction was known
        }
        wait_for_answer(own, about, what.at, protocol, stage::ANSWERED);
        own.name.assign(packet.data.skip(1 + packet.data[0]));
    } else if (packet.code == (pap ? PAP_ACK : CHAP_SUCCESS)) {
        end_login(other, ends, about, what.at, end, protocol, stage::ACCEPTED, {});
    } else if (packet.code == (pap ? PAP_NAK : CHAP_FAILURE)) {
        end_login(other, ends, about, what.at, end, protocol, stage::REFUSED,
                  pap ? counted_text(packet.data) : packet.data);
    }
}

bool tell_unanswered_logins(const ppp_logins& logins, const link_ends& ends, const journal& about) {
    bool told = false;
    for (const int end : {0, 1}) {
        const ppp_login& login = logins[static_cast<std::size_t>(end)];
        if (login.tries < MANY_TRIES || login.lost != about.lost) {
            continue;
        }
        told = true;
        const std::string took = duration_text(elapsed(login.first, login.last));
        const std::string protocol(ppp_protocol_name(login.protocol).view());
        if (login.reached == stage::CHALLENGED) {
            tell_trouble<"%s does not log in: no answer to the %s challenge, sent %d times in %s">(
                about, login.first, ends.name(end), protocol, login.tries, took);
        } else {
            tell_trouble<"%s does not answer the login of %s (%s), sent %d times in %s">(
                about, login.first, ends.name(1 - end), quoted_name(login), protocol, login.tries, took);
        }
    }
    return told;
}

void put_logins(text_sink& out, const ppp_logins& logins, const link_ends& ends) {
    for (const int end : {0, 1}) {
        const ppp_login& login = logins[static_cast<std::size_t>(end)];
        const char* const who = ends.name(end);
        const bool asked_again = login.accepted && login.tries < MANY_TRIES;
        switch (asked_again ? stage::ACCEPTED : login.reached) {
            case stage::NONE:
                break;
            case stage::CHALLENGED:
                print_to<"; %s asked to log in (%s), not answered">(out, who, result_text(login));
                break;
            case stage::ANSWERED:
                print_to<"; login of %s as %s (%s), not answered">(out, who, quoted_name(login), result_text(login));
                break;
            case stage::ACCEPTED:
                print_to<"; %s logged in as %s (%s)">(out, who, quoted_name(login), result_text(login));
                break;
            case stage::REFUSED:
                print_to<"; login of %s as %s refused (%s)">(out, who, quoted_name(login), result_text(login));
                break;
        }
    }
}

bool was_refused(const ppp_logins& logins) {
    return logins[0].reached == stage::REFUSED || logins[1].reached == stage::REFUSED;
}

}  // namespace ifwatch::reporting
