#include "read/report/fax_session.h"

#include <string>

#include "fax/t30_frame.h"

namespace ifwatch::reporting {

namespace {

using direction = fax_session::direction;

bool has_failed(const fax_session& session) { return session.over && !session.complete; }

std::string page_text(const fax_session& session) {
    if (session.began_before) {
        return "a page";
    }
    text_buffer<32> text;
    print_to<"page %lu">(text, session.pages + 1);
    return std::string(text.text());
}

/// The name of the last command; PPS and EOR have names of their own only with what they stand for.
std::string_view command_name(int command) {
    switch (command) {
        case T30_DIS:
            return "DIS";
        case T30_DTC:
            return "DTC";
        case T30_DCS:
            return "DCS";
        case T30_PPS:
            return "PPS";
        case T30_EOR:
            return "EOR";
        default:
            return t30_frame_name(command);
    }
}

const char* other_side(const fax_session& session) { return session.command_sent ? "the other side" : "the router"; }

void put_no_answer(text_sink& out, const fax_session& session) {
    const std::string_view name = command_name(session.command);
    if (session.command_sent) {
        print_to<"no answer to %s, sent %s">(out, name, count_text(static_cast<std::uint64_t>(session.tries), "time"));
    } else {
        print_to<"the router did not answer %s, received %s">(
            out, name, count_text(static_cast<std::uint64_t>(session.tries), "time"));
    }
    if (session.command == T30_DIS && session.command_sent) {
        put(out, ": the caller is no fax machine, or does not hear the router");
    } else if (session.command == T30_DCS) {
        put(out, ": the training was not answered");
    }
}

/// Behind an answer that went before the end.
void put_behind_answer(text_sink& out, const fax_session& session) {
    switch (session.answer) {
        case T30_FTT:
            print_to<"the training failed %s, the last at %s: the line is too bad">(
                out, count_text(session.failed_trainings, "time"), session.last_rate);
            break;
        case T30_RTN:
        case T30_PIN:
        case T30_ERR:
            print_to<"%s did not accept %s (%s): the line is too bad">(out, other_side(session), page_text(session),
                                                                       t30_frame_name(session.answer));
            break;
        case T30_PPR:
            print_to<"parts of %s were asked for again %s (PPR)">(out, page_text(session),
                                                                  count_text(session.parts, "time"));
            break;
        default:
            print_to<"broken off %s %s">(out, session.in_page ? "within" : "before", page_text(session));
            break;
    }
}

void put_reason(text_sink& out, const fax_session& session) {
    if (session.command == T30_NOTHING) {
        put(out, session.call == direction::SENT ? "the called side does not answer as a fax machine (no DIS)"
                                                 : "broken off before anything was said");
    } else if (session.answer != T30_NOTHING) {
        put_behind_answer(out, session);
    } else if (session.command == T30_DTC || session.command == T30_DIS || !session.in_page) {
        put_no_answer(out, session);
    } else {
        print_to<"broken off within %s">(out, page_text(session));
    }
    if (session.hung_up) {
        print_to<"; %s hung up (DCN)">(out, session.hung_up_by_router ? "the router" : "the other side");
    }
}

void put_station(text_sink& out, const char* before, const short_text& station) {
    if (!station.empty()) {
        put(out, before);
        station.put_to(out);
    }
}

void put_quality(text_sink& out, const fax_session& session) {
    if (session.retrains > 0) {
        print_to<", trained again %s">(out, count_text(session.retrains, "time"));
    }
    if (session.failed_trainings > 0) {
        print_to<", training failed %s (FTT)">(out, count_text(session.failed_trainings, "time"));
    }
    if (session.refused > 0) {
        print_to<", %s not accepted (RTN)">(out, count_text(session.refused, "page"));
    }
    if (session.parts > 0) {
        print_to<", parts asked for again %s (PPR)">(out, count_text(session.parts, "time"));
    }
    if (session.damaged > 0) {
        print_to<", %s damaged">(out, count_text(session.damaged, "frame"));
    }
}

}  // namespace

void put_fax_session(text_sink& out, const fax_session& session, const journal& /*about*/) {
    if (session.call == direction::UNKNOWN) {
        put(out, "fax");
    } else {
        put(out, session.call == direction::SENT ? "fax out" : "fax in");
    }
    put(out, session.began_before ? ", began before" : "");
    if (session.pages_go != direction::UNKNOWN && session.call != direction::UNKNOWN &&
        session.pages_go != session.call) {
        put(out, ", polled");
    }
    put_station(out, " from ", session.sender);
    put_station(out, " to ", session.receiver);
    if (!session.first_rate.empty()) {
        print_to<", %s">(out, session.first_rate);
    }
    if (session.last_rate != session.first_rate) {
        print_to<", then %s">(out, session.last_rate);
    }
    put(out, session.error_correction ? ", ECM" : "");
    print_to<": %s in %s">(out, count_text(session.pages, "page"), duration_text(elapsed(session.first, session.last)));
    put_quality(out, session);
    put(out, ", ");
    if (has_failed(session)) {
        put(out, "failed: ");
        put_reason(out, session);
    } else {
        put(out, session.over ? "ended in order" : "not over");
    }
}

void conclude_fax_session(const fax_session& session, const journal& about) {
    if (!has_failed(session) || session.lost != about.lost || !about.troubles->wants_words()) {
        return;
    }
    text_buffer<200> reason;
    put_reason(reason, session);
    text_buffer<160> station;
    const bool sent = session.pages_go == direction::SENT ||
                      (session.pages_go == direction::UNKNOWN && session.call == direction::SENT);
    put_station(station, sent ? " to " : " from ", sent ? session.receiver : session.sender);
    text_buffer<32> behind;
    if (session.pages > 0) {
        print_to<" behind %s">(behind, count_text(session.pages, "page"));
    }
    const place at = session.command == T30_NOTHING ? session.first : session.command_at;
    tell_trouble<"the fax%s failed%s: %s">(about, at, station.text(), behind.text(), reason.text());
}

}  // namespace ifwatch::reporting
