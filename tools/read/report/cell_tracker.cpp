#include "read/report/cell_tracker.h"

#include <algorithm>

#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

constexpr int CELL_HEADER = 4;
constexpr int FUNCTION_AIS = 0x10;
constexpr int FUNCTION_RDI = 0x11;
constexpr int FUNCTION_LOOPBACK = 0x18;

// An alarm comes once a second while it lasts, and is over when none has come for 2.5 s.
constexpr std::uint32_t ALARM_OVER_MS = 3'500;
constexpr std::uint32_t LOOPBACK_WAIT_MS = 5'000;

int vpi_of(std::uint32_t key) { return static_cast<int>(key >> 16); }
int vci_of(std::uint32_t key) { return static_cast<int>(key & 0xFFFF); }

void tell_alarm(const journal& about, std::uint32_t key, const cell_tracker::alarm& alarm, bool remote) {
    const std::string lasted = duration_text(elapsed(alarm.first, alarm.last));
    const char* const words =
        remote ? "RDI: the far end does not receive" : "AIS: a defect on the way from the far end";
    if (alarm.cells == 1) {
        tell_trouble<"alarm cell on VPI %d, VCI %d (%s)">(about, alarm.first, vpi_of(key), vci_of(key), words);
    } else {
        tell_trouble<"alarm cells on VPI %d, VCI %d for %s (%s)">(about, alarm.first, vpi_of(key), vci_of(key), lasted,
                                                                  words);
    }
}

void take_alarm(const journal& about, std::uint32_t key, cell_tracker::alarm& alarm, bool remote) {
    if (alarm.cells > 0 && elapsed(alarm.last, about.now) > ALARM_OVER_MS) {
        tell_alarm(about, key, alarm, remote);
        alarm = {};
    }
    if (alarm.cells++ == 0) {
        alarm.first = about.now;
    }
    alarm.last = about.now;
}

/// A loopback cell whose answer is not there in time.
bool is_overdue(const cell_tracker::loopback& waiting, const journal& about) {
    return elapsed(waiting.first, about.now) >= LOOPBACK_WAIT_MS;
}

void give_up_overdue(const journal& about, std::uint32_t key, cell_tracker::circuit& circuit) {
    for (const cell_tracker::loopback& waiting : circuit.waiting) {
        if (!is_overdue(waiting, about) || waiting.lost != about.lost) {
            continue;
        }
        ++circuit.unanswered;
        tell_trouble<"no answer to a loopback cell on VPI %d, VCI %d: %s">(
            about, waiting.first, vpi_of(key), vci_of(key),
            waiting.sent ? "the far end of the circuit is not there" : "the router does not answer");
    }
    std::erase_if(circuit.waiting, [&](const auto& waiting) { return is_overdue(waiting, about); });
}

void take_loopback(const frame& what, const journal& about, std::uint32_t key, cell_tracker::circuit& circuit) {
    const octets payload = what.data.skip(CELL_HEADER);
    const bool request = payload[1] != 0;
    const std::uint32_t tag = payload.le32(2);
    give_up_overdue(about, key, circuit);
    if (!request) {
        const auto asked = std::ranges::find_if(circuit.waiting, [&](const auto& waiting) {
            return waiting.tag == tag && (waiting.sent != what.sent || !about.has_sent);
        });
        if (asked != circuit.waiting.end()) {
            circuit.waiting.erase(asked);
            ++circuit.answered;
        }
        return;
    }
    ++circuit.loopbacks;
    if (circuit.waiting.size() < cell_tracker::MOST_WAITING) {
        circuit.waiting.push_back({what.at, tag, what.sent, about.lost});
    }
}

}  // namespace

void take_cell(cell_tracker& tracker, const journal& about, const frame& what) {
    const std::uint32_t word = what.data.le32(0);
    const std::uint32_t key = (word >> 20 & 0xFF) << 16 | (word >> 4 & 0xFFFF);
    if (tracker.circuits.size() >= cell_tracker::MOST_CIRCUITS && !tracker.circuits.contains(key)) {
        ++tracker.left_out;
        return;
    }
    const auto [found, is_new] = tracker.circuits.try_emplace(key);
    cell_tracker::circuit& circuit = found->second;
    if (is_new) {
        circuit.first = what.at;
    }
    switch (what.data[CELL_HEADER]) {
        case FUNCTION_AIS:
            take_alarm(about, key, circuit.indication, false);
            break;
        case FUNCTION_RDI:
            take_alarm(about, key, circuit.remote, true);
            break;
        case FUNCTION_LOOPBACK:
            take_loopback(what, about, key, circuit);
            break;
        default:
            break;
    }
}

void finish_cells(cell_tracker& tracker, const journal& about) {
    for (auto& [key, circuit] : tracker.circuits) {
        give_up_overdue(about, key, circuit);
        if (circuit.indication.cells > 0) {
            tell_alarm(about, key, circuit.indication, false);
        }
        if (circuit.remote.cells > 0) {
            tell_alarm(about, key, circuit.remote, true);
        }
    }
}

bool cells_were_seen(const cell_tracker& tracker) { return !tracker.circuits.empty(); }

void print_cell_section(const cell_tracker& tracker) {
    section rows;
    for (const auto& [key, circuit] : tracker.circuits) {
        print_row<"VPI %d, VCI %d: %s, %lu answered%s%s">(
            rows, circuit.first, vpi_of(key), vci_of(key), count_text(circuit.loopbacks, "loopback cell"),
            circuit.answered, circuit.indication.cells > 0 ? ", AIS" : "", circuit.remote.cells > 0 ? ", RDI" : "");
    }
    end_section(rows);
    if (tracker.left_out > 0) {
        print<"  and %s of further circuits\n">(count_text(tracker.left_out, "cell"));
    }
}

}  // namespace ifwatch::reporting
