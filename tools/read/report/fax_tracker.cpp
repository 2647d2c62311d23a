#include "read/report/fax_tracker.h"

#include <algorithm>
#include <array>
#include <span>

#include "fax/fax_record.h"
#include "fax/t30_bitfields.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using direction = fax_session::direction;

// Nobody in a fax call is silent for longer: timer T1 is 35 s, and a page is data all the time.
constexpr std::uint32_t SILENCE_MS = 60'000;
constexpr std::uint32_t TONE_PAUSE_MS = 10'000;  // the calling tone comes every 3.5 s

constexpr int SESSION = 0;  // the only key: a channel has one fax call at a time

constexpr int T30_CSI = 0x40;  // and CIG: of the station that pages come to
constexpr int T30_TSI = 0x42;
constexpr int T30_CTC = 0x12;
constexpr int T30_FCD = 0x06;

constexpr int COMMANDS[] = {T30_DCS, T30_EOM, T30_MPS, T30_EOP, T30_PPS, T30_EOR, T30_CTC};
constexpr int ANSWERS[] = {T30_CFR, T30_FTT, T30_MCF, T30_RTP, T30_RTN, T30_PIP, T30_PIN, T30_PPR, T30_ERR, T30_CTR};

bool is_one_of(std::span<const int> set, int fcf) { return std::ranges::find(set, fcf) != set.end(); }

/// Without bit 0, and a post-message command without that of a procedure interrupt. DIS and DTC are two frames.
int plain_fcf(int fcf) {
    if (fcf == T30_DTC) {
        return fcf;
    }
    const int group = fcf & 0xF0;
    const bool interrupts = group == 0x30 || group == 0x50 || group == 0x90;
    return (interrupts ? fcf - 0x10 : fcf) & ~1;
}

direction direction_of(bool sent) { return sent ? direction::SENT : direction::RECEIVED; }
direction other_direction(bool sent) { return direction_of(!sent); }

fax_session& begin_session(fax_tracker& tracker, const journal& about, place at) {
    fax_session session;
    session.first = at;
    session.last = at;
    session.lost = about.lost;
    return tracker.sessions.begin(SESSION, *about.shared, session);
}

void end_session(fax_tracker& tracker, const journal& about, fax_session& session) {
    session.over = session.last;
    conclude_fax_session(session, about);
    tracker.sessions.finish(SESSION);
}

/// The session that goes on, if nobody was silent for longer; nullptr: none, or none any more.
fax_session* session_within(fax_tracker& tracker, const journal& about, place at, std::uint32_t silence_ms) {
    fax_session* const session = tracker.sessions.find(SESSION);
    if (session != nullptr && elapsed(session->last, at) > silence_ms) {
        end_session(tracker, about, *session);
        return nullptr;
    }
    return session;
}

fax_session* standing_session(fax_tracker& tracker, const journal& about, place at) {
    fax_session* const session = session_within(tracker, about, at, SILENCE_MS);
    if (session != nullptr) {
        session->last = at;
    }
    return session;
}

/// A tone begins a call, and goes on until frames come.
void take_tone(fax_tracker& tracker, const journal& about, place at, direction call) {
    fax_session* session = session_within(tracker, about, at, TONE_PAUSE_MS);
    if (session != nullptr && session->command != T30_NOTHING) {
        end_session(tracker, about, *session);
        session = nullptr;
    }
    if (session == nullptr) {
        session = &begin_session(tracker, about, at);
    }
    session->call = call;
    session->last = at;
}

// --- Frames

/// The same command once more: nobody has answered it, or its answer was lost on the line.
bool is_repeated(const fax_session& session, int command, int post_message) {
    const bool retrains = command == T30_DCS || command == T30_CTC;
    const bool unanswered = session.answer == T30_NOTHING || (!session.in_page && !retrains);
    return session.command == command && session.post_message == post_message && unanswered;
}

void take_command(fax_session& session, const frame& what, int command, octets fields) {
    const int post_message = command == T30_PPS || command == T30_EOR ? fields[0] : T30_NOTHING;
    if (is_repeated(session, command, post_message)) {
        ++session.tries;
        return;
    }
    session.command = command;
    session.post_message = post_message;
    session.tries = 1;
    session.command_at = what.at;
    session.command_sent = what.sent;
    session.answer = T30_NOTHING;
    session.in_page = false;
    session.complete = false;
}

void take_choice(fax_session& session, const frame& what, octets fields) {
    constexpr int error_correction_bit = 26;
    session.pages_go = direction_of(what.sent);
    const std::string_view rate = t30_rate_name(fields);
    const bool begins_document = session.command == T30_DIS || session.command == T30_DTC;
    session.retrains += session.first_rate.empty() || begins_document ? 0 : 1;
    session.first_rate = session.first_rate.empty() ? rate : session.first_rate;
    session.last_rate = rate.empty() ? session.last_rate : rate;
    session.error_correction = get_bitfield(fields, error_correction_bit, 1) == 1;
}

/// The command that ends a page, or what it stands for; T30_NOTHING for a part of a page.
int page_end(const fax_session& session) {
    const bool stands_for = session.command == T30_PPS || session.command == T30_EOR;
    const int command = stands_for ? plain_fcf(session.post_message) : session.command;
    return command == T30_EOM || command == T30_MPS || command == T30_EOP ? command : T30_NOTHING;
}

void take_answer(fax_session& session, int answer) {
    if (session.answer == answer) {
        return;  // once more
    }
    session.answer = answer;
    session.in_page = false;
    const bool confirms = answer == T30_MCF || answer == T30_RTP || answer == T30_PIP;
    if (confirms && page_end(session) != T30_NOTHING) {
        ++session.pages;
        session.complete = page_end(session) == T30_EOP;
    }
    session.failed_trainings += answer == T30_FTT ? 1 : 0;
    session.refused += answer == T30_RTN || answer == T30_PIN || answer == T30_ERR ? 1 : 0;
    session.parts += answer == T30_PPR ? 1 : 0;
}

/// An identification is sent last character first, and padded.
short_text identification(octets fields) {
    int begin = 0;
    int end = std::min(fields.within(), static_cast<int>(short_text::MOST));
    while (begin < end && fields[begin] == ' ') {
        ++begin;
    }
    while (end > begin && fields[end - 1] == ' ') {
        --end;
    }
    std::array<std::uint8_t, short_text::MOST> text{};
    const auto sent = fields.run(begin, end - begin);
    std::reverse_copy(sent.begin(), sent.end(), text.begin());
    short_text shown;
    shown.append(octets_of(text).cut(end - begin));
    return shown;
}

void take_t30(fax_session& session, const frame& what, octets t30) {
    const int fcf = plain_fcf(t30[0]);
    const octets fields = t30.skip(1);
    if (fcf == T30_DIS || fcf == T30_DTC) {
        session.call = fcf == T30_DIS && session.call == direction::UNKNOWN ? other_direction(what.sent) : session.call;
        take_command(session, what, fcf, fields);
    } else if (is_one_of(COMMANDS, fcf)) {
        if (fcf == T30_DCS) {
            take_choice(session, what, fields);
        }
        take_command(session, what, fcf, fields);
    } else if (is_one_of(ANSWERS, fcf)) {
        take_answer(session, fcf);
    } else if (fcf == T30_CSI) {
        session.receiver = identification(fields);
    } else if (fcf == T30_TSI) {
        session.sender = identification(fields);
    } else if (fcf == T30_FCD) {
        session.in_page = true;
    }
}

void take_frame(fax_tracker& tracker, const journal& about, const frame& what, octets t30) {
    const int fcf = plain_fcf(t30[0]);
    fax_session* session = standing_session(tracker, about, what.at);
    if (session == nullptr && fcf == T30_DCN) {
        return;  // once more, or the end of what was not seen
    }
    if (session == nullptr) {
        constexpr int first_frames[] = {T30_DIS, T30_CSI, 0x20, 0x04, 0x24};  // NSF, and what may stand before
        session = &begin_session(tracker, about, what.at);
        session->began_before = !is_one_of(first_frames, fcf);
    }
    if (fcf == T30_DCN) {
        session->hung_up = true;
        session->hung_up_by_router = what.sent;
        end_session(tracker, about, *session);
        return;
    }
    take_t30(*session, what, t30);
}

// --- Events

/// Page data: the picture, or the zeros of a training.
void take_page_data(fax_tracker& tracker, const journal& about, const frame& what) {
    fax_session* session = standing_session(tracker, about, what.at);
    if (session == nullptr) {
        session = &begin_session(tracker, about, what.at);
        session->began_before = true;
        session->pages_go = direction_of(what.sent);
    }
    session->in_page = session->command != T30_DCS || session->answer != T30_NOTHING;
}

void take_data(fax_tracker& tracker, const journal& about, const frame& what) {
    const std::uint32_t framing = tracker.framing[what.sent ? 0 : 1];
    if (framing == FAX_FRAMING_PAGE) {
        take_page_data(tracker, about, what);
    } else if (what.data.within() > 3) {
        take_frame(tracker, about, what, what.data.skip(3));
    }
}

void take_mode(fax_tracker& tracker, const frame& what) {
    if (what.data.length > 1) {
        tracker.framing[what.sent ? 0 : 1] = fax_framing(what.data[1]);
    } else if (!what.sent) {
        tracker.framing[1] = FAX_FRAMING_T30;
    }
}

}  // namespace

void take_fax(fax_tracker& tracker, const journal& about, const frame& what, std::uint32_t /*flags*/) {
    tracker.seen = true;
    switch (what.data[0]) {
        case FAX_EVENT_DATA:
            take_data(tracker, about, what);
            break;
        case FAX_EVENT_MODE:
            take_mode(tracker, what);
            break;
        case FAX_EVENT_CED:
            take_tone(tracker, about, what.at, other_direction(what.sent));
            break;
        case FAX_EVENT_CNG:
            if (what.sent) {
                take_tone(tracker, about, what.at, direction::SENT);
            }
            break;
        case FAX_EVENT_FCS_ERROR:
            if (fax_session* const session = standing_session(tracker, about, what.at)) {
                ++session->damaged;
            }
            break;
        default:
            break;
    }
}

void finish_fax(fax_tracker& tracker, const journal& about) { session_within(tracker, about, about.now, SILENCE_MS); }

bool fax_was_seen(const fax_tracker& tracker) { return tracker.seen; }

void print_fax_section(const fax_tracker& tracker, const journal& about) {
    print_remembered(tracker.sessions,
                     [&](text_sink& out, const fax_session& session) { put_fax_session(out, session, about); });
}

}  // namespace ifwatch::reporting
