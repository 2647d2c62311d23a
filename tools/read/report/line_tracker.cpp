#include "read/report/line_tracker.h"

#include <algorithm>
#include <string>

#include "display/l1_event.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using kind = line_change::kind;

constexpr std::uint32_t EVENT_ACTIVATE = 1;
constexpr std::uint32_t EVENT_DEACTIVATE = 2;
constexpr std::uint32_t FIRST_LINE_ERROR = 3;
constexpr std::uint32_t LAST_LINE_ERROR = 6;
constexpr std::uint32_t EVENT_LAYER1_STATE = 7;

// What an event of layer 1 tells, as the router numbers them. F: the terminal's side, G: the network's.
constexpr std::uint32_t ACTIVATION_REQUEST = 0;
constexpr std::uint32_t TIMER_T3 = 1;
constexpr std::uint32_t F1 = 4;
constexpr std::uint32_t F2 = 5;
constexpr std::uint32_t F3 = 6;
constexpr std::uint32_t F5 = 8;
constexpr std::uint32_t F7 = 10;
constexpr std::uint32_t F8 = 11;
constexpr std::uint32_t G1 = 12;
constexpr std::uint32_t G2 = 13;
constexpr std::uint32_t G3 = 14;
constexpr std::uint32_t SLIP = 16;

// A damaged frame now and then is no trouble, nor a slip when two clocks meet.
constexpr std::uint64_t MANY_ERRORS = 10;
constexpr std::uint64_t MANY_SLIPS = 3;
constexpr std::uint32_t LONG_DOWN_MS = 60'000;

line_change* going_on(line_tracker& line) { return line.goes_on ? &line.changes.back() : nullptr; }

void begin_change(line_tracker& line, const journal& about, kind what, bool goes_on) {
    line.goes_on = false;
    if (line.changes.size() >= line_tracker::MOST_CHANGES) {
        ++line.more_changes;
        return;
    }
    line_change& change = line.changes.emplace_back();
    change.first = about.now;
    change.what = what;
    change.was_up = line.up;
    line.goes_on = goes_on;
}

void end_change(line_tracker& line, const journal& about, kind became) {
    line_change& change = line.changes.back();
    change.what = became;
    change.took_ms = elapsed(change.first, about.now);
    line.goes_on = false;
}

void count(line_tracker::tally& tally, place at) {
    if (tally.count++ == 0) {
        tally.first = at;
    }
}

void tell_not_activated(const line_change& change, const journal& about) {
    const std::string took = duration_text(change.took_ms);
    if (change.furthest >= F5) {
        tell_trouble<"layer 1 does not come up: a signal, but out of step for %s (T3)">(about, change.first, took);
    } else {
        tell_trouble<"layer 1 does not come up: no signal for %s (T3): the cable, its socket, the network termination">(
            about, change.first, took);
    }
}

void tell_was_down(const line_change& change, const journal& about) {
    if (change.what == kind::DOWN_AND_UP && change.was_up) {
        tell_trouble<"the line went down, for %s">(about, change.first, duration_text(change.took_ms));
    }
}

/// Of a line that is down at the end; where the trace began with that only if it lasts.
void tell_is_down(const line_change& change, const journal& about) {
    const std::uint32_t lasted = elapsed(change.first, about.now);
    if (change.what == kind::DOWN && change.was_up && lasted == 0) {
        tell_trouble<"the line went down, with which the records end">(about, change.first);
    } else if (change.what == kind::DOWN && (change.was_up || lasted >= LONG_DOWN_MS)) {
        tell_trouble<"the line %s, and is not up again %s later">(
            about, change.first, change.was_up ? "went down" : "is down", duration_text(lasted));
    }
}

void take_up(line_tracker& line, const journal& about) {
    if (const line_change* const change = going_on(line)) {
        end_change(line, about, change->what == kind::DOWN ? kind::DOWN_AND_UP : kind::ACTIVATED);
        tell_was_down(*change, about);
    } else if (!line.up) {
        begin_change(line, about, kind::ACTIVATED, false);
    }
    line.up = true;
}

void take_activation(line_tracker& line, const journal& about, std::uint32_t state) {
    if (!line.up && going_on(line) == nullptr) {
        begin_change(line, about, kind::ACTIVATING, true);
    }
    if (line_change* const change = going_on(line)) {
        change->furthest = std::max(change->furthest, state);
    }
}

void take_timeout(line_tracker& line, const journal& about) {
    if (line_change* const change = going_on(line); change != nullptr && change->what == kind::ACTIVATING) {
        end_change(line, about, kind::NOT_ACTIVATED);
        tell_not_activated(*change, about);
    }
}

void take_deactivated(line_tracker& line, const journal& about) {
    if (line.up) {
        begin_change(line, about, kind::DEACTIVATED, false);
    }
    line.up = false;
}

void take_lost_step(line_tracker& line, const journal& about) {
    if (line.up) {
        tell_trouble<"layer 1 lost its step (F8): the cable, or noise on it">(about, about.now);
        begin_change(line, about, kind::LOST_STEP, false);
    }
    line.up = false;
}

/// A DSL line that goes down was up, but where the trace begins with it.
void take_down(line_tracker& line, const journal& about) {
    if (line.up || line.changes.empty()) {
        begin_change(line, about, kind::DOWN, true);
    }
    line.up = false;
}

void take_state(line_tracker& line, const journal& about, std::uint32_t state) {
    switch (state) {
        case TIMER_T3:
            take_timeout(line, about);
            break;
        case F1:
        case F3:
        case G1:
            take_deactivated(line, about);
            break;
        case F7:
        case G3:
            take_up(line, about);
            break;
        case F8:
            take_lost_step(line, about);
            break;
        case SLIP:
            count(line.slips, about.now);
            break;
        default:
            if (state == ACTIVATION_REQUEST || state == G2 || (state >= F2 && state < F7)) {
                take_activation(line, about, state);
            }
            break;
    }
}

std::string error_name(std::uint32_t code) {
    const std::string_view padded = line_error_name(static_cast<int>(code)).view();
    return std::string(padded.substr(0, padded.find(' ')));
}

void print_change(section& to, const line_change& change, bool goes_on) {
    const std::string took = duration_text(change.took_ms);
    switch (change.what) {
        case kind::ACTIVATING:
            print_row<"being activated%s">(to, change.first, goes_on ? ": not over" : "");
            break;
        case kind::ACTIVATED:
            if (change.took_ms > 0) {
                print_row<"activated after %s">(to, change.first, took);
            } else {
                print_row<"active">(to, change.first);
            }
            break;
        case kind::NOT_ACTIVATED:
            print_row<"not activated within %s">(to, change.first, took);
            break;
        case kind::DEACTIVATED:
            print_row<"deactivated">(to, change.first);
            break;
        case kind::LOST_STEP:
            print_row<"out of step">(to, change.first);
            break;
        case kind::DOWN:
            print_row<"down: not over">(to, change.first);
            break;
        case kind::DOWN_AND_UP:
            print_row<"down, up again after %s">(to, change.first, took);
            break;
    }
}

}  // namespace

void take_line_event(line_tracker& line, const journal& about, std::uint32_t code, std::uint32_t state) {
    if (code == EVENT_ACTIVATE) {
        take_up(line, about);
    } else if (code == EVENT_DEACTIVATE) {
        take_down(line, about);
    } else if (code == EVENT_LAYER1_STATE) {
        take_state(line, about, state);
    } else if (code >= FIRST_LINE_ERROR && code <= LAST_LINE_ERROR) {
        count(line.errors[code - FIRST_LINE_ERROR], about.now);
        take_line_data(line);
    }
}

void finish_line(line_tracker& line, const journal& about) {
    if (const line_change* const change = going_on(line)) {
        tell_is_down(*change, about);
    }
    for (std::uint32_t code = FIRST_LINE_ERROR; code <= LAST_LINE_ERROR; ++code) {
        const line_tracker::tally& errors = line.errors[code - FIRST_LINE_ERROR];
        if (errors.count >= MANY_ERRORS) {
            tell_trouble<"%lu damaged frames (%s): noise on the line">(about, errors.first, errors.count,
                                                                       error_name(code));
        }
    }
    if (line.slips.count >= MANY_SLIPS) {
        tell_trouble<"the clock slipped %lu times: two clocks on one line, or a bad cable">(about, line.slips.first,
                                                                                            line.slips.count);
    }
}

bool line_was_seen(const line_tracker& line) {
    return !line.changes.empty() || line.slips.count > 0 ||
           std::ranges::any_of(line.errors, [](const line_tracker::tally& errors) { return errors.count > 0; });
}

void print_line_section(const line_tracker& line) {
    section rows;
    for (const line_change& change : line.changes) {
        print_change(rows, change, line.goes_on && &change == &line.changes.back());
    }
    rows.left_out += line.more_changes;
    end_section(rows);
    section counts;
    for (std::uint32_t code = FIRST_LINE_ERROR; code <= LAST_LINE_ERROR; ++code) {
        const line_tracker::tally& errors = line.errors[code - FIRST_LINE_ERROR];
        if (errors.count > 0) {
            print_row<"%s (%s)">(counts, errors.first, count_text(errors.count, "damaged frame"), error_name(code));
        }
    }
    if (line.slips.count > 0) {
        print_row<"%s of the clock">(counts, line.slips.first, count_text(line.slips.count, "slip"));
    }
}

}  // namespace ifwatch::reporting
