#include "read/report/data_link.h"

#include "read/report/page.h"
#include "x25/control_octets.h"

namespace ifwatch::reporting {

namespace {

constexpr std::uint64_t MANY_REJECTS = 10;

/// "TEI 64, SAPI 16"; nothing for a link that needs no name.
std::string name_of(const link_identity& link, const char* before) {
    text_buffer<32> text;
    if (link.tei != link_identity::NO_TEI) {
        print_to<"%sTEI %d">(text, before, link.tei);
    }
    if (link.sapi != 0) {
        print_to<", SAPI %d">(text, link.sapi);
    }
    return std::string(text.text());
}

data_link& begin_link(data_links& links, const journal& about, const frame& what, const link_identity& of) {
    data_link link;
    link.first = what.at;
    link.lost = about.lost;
    link.identity = of;
    link.sent = what.sent;
    link.last_try = what.at;
    return links.begin(of.key(), *about.shared, link);
}

/// The link of a frame that only a link that is up can have.
data_link& link_that_is_up(data_links& links, const journal& about, const frame& what, const link_identity& of) {
    if (data_link* const link = links.find(of.key())) {
        if (!link->up) {
            link->up = what.at;
        }
        return *link;
    }
    data_link& link = begin_link(links, about, what, of);
    link.began_before = true;
    link.up = what.at;
    return link;
}

void tell_tries(const data_link& link, const journal& about) {
    const bool asked = link.sent || !about.has_sent;
    const char* const command = link.identity.set_up_by;
    const std::string took = duration_text(elapsed(link.first, link.last_try));
    if (link.up) {
        tell_trouble<"%s %s %d times in %s before it was answered">(about, link.first, command,
                                                                    asked ? "sent" : "received", link.tries, took);
    } else if (asked) {
        tell_trouble<"no answer to %s, sent %d times in %s: nothing on layer 2">(about, link.first, command, link.tries,
                                                                                 took);
    } else {
        tell_trouble<"the router does not answer %s, received %d times in %s">(about, link.first, command, link.tries,
                                                                               took);
    }
}

void conclude_link(const data_link& link, const journal& about) {
    if (link.tries >= MANY_TRIES && !link.refused && link.lost == about.lost) {
        tell_tries(link, about);
    }
    if (link.rejects >= MANY_REJECTS && link.rejects * 100 >= link.information) {
        tell_trouble<"%lu frames%s were asked for again (REJ): noise on the line">(
            about, link.first_reject, link.rejects, name_of(link.identity, " on "));
    }
}

void end_link(data_links& links, const journal& about, const frame& what, int key) {
    data_link* const link = links.find(key);
    if (link == nullptr) {
        return;
    }
    link->down = what.at;
    link->down_by_router = what.sent;
    conclude_link(*link, about);
    links.finish(key);
}

void take_set_up(data_links& links, const journal& about, const frame& what, const link_identity& of) {
    data_link* link = links.find(of.key());
    const bool given_up = link != nullptr && !link->up && elapsed(link->last_try, what.at) >= SET_UP_PAUSE_MS;
    if (given_up) {
        conclude_link(*link, about);
    }
    if (link == nullptr || given_up) {
        link = &begin_link(links, about, what, of);
    }
    if (link->up) {
        ++link->anew;
        return;
    }
    ++link->tries;
    link->last_try = what.at;
}

/// A DM with F = 1 refuses the link that is asked for; one with F = 0 only asks for it, too.
void take_dm(data_links& links, const journal& about, const frame& what, int key, bool is_answer) {
    data_link* const link = links.find(key);
    if (link == nullptr || link->up || link->tries == 0) {
        end_link(links, about, what, key);
        return;
    }
    if (!is_answer) {
        return;
    }
    link->refused = true;
    tell_trouble<"the data link%s is refused (DM)">(about, link->first, name_of(link->identity, " on "));
    end_link(links, about, what, key);
}

void take_numbered(data_links& links, const journal& about, const frame& what, const link_identity& of, int control) {
    data_link& link = link_that_is_up(links, about, what, of);
    if ((control & 1) == 0) {
        ++link.information;
    } else if ((control & 0x0F) == REJ && link.rejects++ == 0) {
        link.first_reject = what.at;
    }
}

void take_unnumbered(data_links& links, const journal& about, const frame& what, const link_identity& of, int control) {
    switch (control & ~POLL_FINAL) {
        case SABM:
        case SABME:
            take_set_up(links, about, what, of);
            break;
        case UA:
            if (links.find(of.key()) != nullptr) {
                link_that_is_up(links, about, what, of);
            }
            break;
        case DM:
            take_dm(links, about, what, of.key(), (control & POLL_FINAL) != 0);
            break;
        case DISC:
            end_link(links, about, what, of.key());
            break;
        default:
            break;
    }
}

bool is_up(data_links& links, int key) {
    const data_link* const link = links.find(key);
    return link != nullptr && link->up;
}

// --- Rows

void put_up(text_sink& out, const data_link& link) {
    if (link.began_before) {
        put(out, "up, began before");
    } else if (link.refused) {
        put(out, "refused (DM)");
    } else if (!link.up) {
        print_to<"%s %s: no answer">(out, link.identity.set_up_by,
                                     count_text(static_cast<std::uint64_t>(link.tries), "time"));
    } else {
        print_to<"up after %s">(out, duration_text(elapsed(link.first, *link.up)));
        if (link.tries > 1) {
            print_to<" and %d %ss">(out, link.tries, link.identity.set_up_by);
        }
    }
}

void put_link(text_sink& out, const data_link& link, const journal& about) {
    print_to<"data link%s: ">(out, name_of(link.identity, " on "));
    put_up(out, link);
    if (link.anew > 0) {
        print_to<", set up anew %s">(out, count_text(link.anew, "time"));
    }
    if (link.rejects > 0) {
        print_to<", %lu REJ">(out, link.rejects);
    }
    if (link.up && link.down) {
        print_to<", down after %s">(out, duration_text(elapsed(*link.up, *link.down)));
        if (about.has_sent) {
            put(out, link.down_by_router ? " by the router" : " by the other side");
        }
    }
}

}  // namespace

bool take_link_control(data_links& links, const journal& about, const frame& what, const link_identity& of,
                       int control) {
    if ((control & 3) != 3) {
        take_numbered(links, about, what, of, control);
        return false;
    }
    const bool was_up = is_up(links, of.key());
    take_unnumbered(links, about, what, of, control);
    return was_up && !is_up(links, of.key());
}

void finish_data_links(data_links& links, const journal& about) {
    links.for_each_lasting([&](const data_link& link) { conclude_link(link, about); });
}

void print_data_links(const data_links& links, const journal& about) {
    print_remembered(links, [&](text_sink& out, const data_link& link) { put_link(out, link, about); });
}

}  // namespace ifwatch::reporting
