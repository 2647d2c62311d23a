#include "read/report/eft_tracker.h"

#include "eft/eft_parameters.h"
#include "eft/eft_tdu.h"
#include "read/report/page.h"

namespace ifwatch::reporting {

namespace {

using state = eft_request::state;

constexpr std::uint32_t ANSWER_WAIT_MS = 60'000;

/// The requests of one side; of both where a capture has no directions.
int key_of(const journal& about, bool sent) { return about.has_sent && sent ? 1 : 0; }

const char* who(const journal& about, bool sent) {
    if (!about.has_sent) {
        return "one side";
    }
    return sent ? "the router" : "the other side";
}

bool is_transfer(int command) { return command == EFT_LOAD || command == EFT_SAVE || command == EFT_LIST; }

/// The transfer whose blocks this side writes: its own T-SAVE, or the other side's T-LOAD or T-DIRECTORY.
eft_request* transfer_written_by(eft_tracker& tracker, const journal& about, bool sent) {
    for (const bool asked_by : {sent, !sent}) {
        eft_request* const request = tracker.requests.find(key_of(about, asked_by));
        const bool writes = request != nullptr && is_transfer(request->command) && request->now != state::REJECTED &&
                            (!about.has_sent || (request->command == EFT_SAVE) == (asked_by == sent));
        if (writes) {
            return request;
        }
    }
    return nullptr;
}

void end_request(eft_tracker& tracker, const journal& about, const eft_request& request) {
    tracker.requests.finish(key_of(about, request.sent));
}

void tell_refusal(const eft_request& request, const journal& about, const char* verb, bool by_router) {
    if (!about.troubles->wants_words()) {
        return;
    }
    text_buffer<96> name;
    put_eft_request_name(name, request);
    tell_trouble<"%s was %s by %s: %s">(about, request.first, name.text(), verb, who(about, by_router), request.why);
}

void tell_no_answer(const eft_request& request, const journal& about) {
    if (request.now != state::ASKED || request.lost != about.lost ||
        elapsed(request.first, about.now) < ANSWER_WAIT_MS) {
        return;
    }
    text_buffer<96> name;
    put_eft_request_name(name, request);
    tell_trouble<"no answer to %s">(about, request.first, name.text());
}

/// A request that another command follows before it is done.
void break_off(eft_tracker& tracker, const journal& about, bool sent) {
    eft_request* const request = tracker.requests.find(key_of(about, sent));
    if (request == nullptr) {
        return;
    }
    tell_no_answer(*request, about);
    const bool of_file = request->command == EFT_LOAD || request->command == EFT_SAVE;
    if (request->now == state::GRANTED && of_file && request->lost == about.lost) {
        text_buffer<96> name;
        put_eft_request_name(name, *request);
        tell_trouble<"%s was broken off behind %s">(about, request->first, name.text(),
                                                    count_text(request->blocks, "block"));
    }
    request->now = request->now == state::GRANTED && of_file ? state::BROKEN_OFF : request->now;
    end_request(tracker, about, *request);
}

/// A transfer that was rejected goes on from a recovery point.
void take_restart(eft_tracker& tracker, const journal& about) {
    for (const bool sent : {true, false}) {
        eft_request* const request = tracker.requests.find(key_of(about, sent));
        if (request != nullptr && request->now == state::REJECTED) {
            request->now = state::GRANTED;
        }
    }
}

void take_request(eft_tracker& tracker, const journal& about, const frame& what, int command,
                  const eft_fields& fields) {
    break_off(tracker, about, what.sent);
    if (command == EFT_ASSOCIATE || command == EFT_RELEASE || command == EFT_END_ACCESS) {
        break_off(tracker, about, !what.sent);
    }
    eft_request request;
    request.first = what.at;
    request.last = what.at;
    request.lost = about.lost;
    request.command = command;
    request.sent = what.sent;
    request.name = fields.name;
    tracker.requests.begin(key_of(about, what.sent), *about.shared, request);
}

void take_write(eft_tracker& tracker, const journal& about, const frame& what, const eft_fields& fields) {
    eft_request* const transfer = transfer_written_by(tracker, about, what.sent);
    if (transfer == nullptr) {
        return;
    }
    ++transfer->blocks;
    transfer->last = what.at;
    transfer->now = state::GRANTED;
    transfer->last_block = fields.last_block;
    if (fields.last_block && !fields.to_be_confirmed) {
        transfer->now = state::DONE;
        end_request(tracker, about, *transfer);
    }
}

void take_positive(eft_tracker& tracker, const journal& about, const frame& what, const eft_fields& fields) {
    const int answered = fields.results[0];
    if (answered == EFT_WRITE) {
        eft_request* const transfer = transfer_written_by(tracker, about, !what.sent);
        if (transfer != nullptr && transfer->last_block) {
            transfer->last = what.at;
            transfer->now = state::DONE;
            end_request(tracker, about, *transfer);
        }
        return;
    }
    eft_request* const request = tracker.requests.find(key_of(about, !what.sent));
    if (request == nullptr || request->command != answered || request->now != state::ASKED) {
        return;
    }
    request->last = what.at;
    request->now = is_transfer(request->command) ? state::GRANTED : state::DONE;
    if (request->now == state::DONE) {
        end_request(tracker, about, *request);
    }
}

void refuse(eft_tracker& tracker, const journal& about, eft_request& request, const frame& what,
            const eft_fields& fields) {
    request.why = eft_reason_text(fields.results);
    request.now = state::REFUSED;
    request.last = what.at;
    tell_refusal(request, about, "refused", what.sent);
    end_request(tracker, about, request);
}

void take_negative(eft_tracker& tracker, const journal& about, const frame& what, const eft_fields& fields) {
    eft_request* const request = tracker.requests.find(key_of(about, !what.sent));
    if (request != nullptr && request->now == state::ASKED) {
        refuse(tracker, about, *request, what, fields);
    } else if (eft_request* const transfer = transfer_written_by(tracker, about, !what.sent)) {
        refuse(tracker, about, *transfer, what, fields);
    } else {
        tell_trouble<"%s gave a negative answer: %s">(about, what.at, who(about, what.sent),
                                                      eft_reason_text(fields.results));
    }
}

/// The transfer may begin anew at a recovery point.
void take_reject(eft_tracker& tracker, const journal& about, const frame& what, const eft_fields& fields) {
    eft_request* const transfer = transfer_written_by(tracker, about, !what.sent);
    if (transfer == nullptr) {
        tell_trouble<"a file was rejected by %s: %s">(about, what.at, who(about, what.sent),
                                                      eft_reason_text(fields.results));
        return;
    }
    transfer->why = eft_reason_text(fields.results);
    transfer->now = state::REJECTED;
    tell_refusal(*transfer, about, "rejected", what.sent);
}

void take_abort(eft_tracker& tracker, const journal& about, const frame& what, const eft_fields& fields) {
    const std::string why = eft_reason_text(fields.results);
    tell_trouble<"the file transfer was aborted by %s: %s">(about, what.at, who(about, what.sent), why);
    for (const bool sent : {true, false}) {
        eft_request* const request = tracker.requests.find(key_of(about, sent));
        if (request != nullptr) {
            request->now = state::ABORTED;
            request->why = why;
            end_request(tracker, about, *request);
        }
    }
}

bool asks(int command) { return command >= EFT_ASSOCIATE && command <= EFT_TYPED_DATA; }

/// The commands that every transfer has are only worth a row where they failed.
bool is_row(const eft_request& request) {
    const int command = request.command;
    return is_transfer(command) || command == EFT_ASSOCIATE || command == EFT_RENAME || command == EFT_DELETE ||
           (request.now != state::DONE && request.now != state::ASKED);
}

}  // namespace

void take_eft(eft_tracker& tracker, const journal& about, const frame& what) {
    tracker.seen = true;
    octets unit = what.data.cut(what.data.length);
    const int command = unit[0];
    const eft_fields fields = read_eft_fields(take_eft_contents(unit), command == EFT_WRITE);
    if (asks(command)) {
        take_request(tracker, about, what, command, fields);
        return;
    }
    switch (command) {
        case EFT_WRITE:
            take_write(tracker, about, what, fields);
            break;
        case EFT_RESPONSE_POSITIVE:
            take_positive(tracker, about, what, fields);
            break;
        case EFT_RESPONSE_NEGATIVE:
            take_negative(tracker, about, what, fields);
            break;
        case EFT_TRANSFER_REJECT:
            take_reject(tracker, about, what, fields);
            break;
        case EFT_READ_RESTART:
            take_restart(tracker, about);
            break;
        case EFT_EXCEPTION:
            tell_trouble<"a file transfer command was not understood by %s: %s">(about, what.at, who(about, what.sent),
                                                                                 eft_reason_text(fields.results));
            break;
        case EFT_ABORT:
            take_abort(tracker, about, what, fields);
            break;
        default:
            break;
    }
}

void finish_eft(eft_tracker& tracker, const journal& about) {
    tracker.requests.for_each_lasting([&](const eft_request& request) { tell_no_answer(request, about); });
}

bool eft_was_seen(const eft_tracker& tracker) { return tracker.seen; }

void print_eft_section(const eft_tracker& tracker, const journal& about) {
    print_remembered(tracker.requests, [&](text_sink& out, const eft_request& request) {
        if (is_row(request)) {
            put_eft_request(out, request, about);
        }
    });
}

}  // namespace ifwatch::reporting
