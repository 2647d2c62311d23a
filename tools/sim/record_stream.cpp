#include "sim/record_stream.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

#include "base/byte_order.h"
#include "capture/channel_types.h"
#include "cases/record_source.h"

namespace ifwatch::sim {

namespace {

using clock = std::chrono::steady_clock;

constexpr std::size_t BATCH = 0x10000;
constexpr std::uint32_t EVENT_LAYER_1 = 7;

bool selects_atm(const record_selection& selection, const cases::case_record& record) {
    const std::uint32_t event = record.info & 0xFF;
    if (event == EVENT_LAYER_1) {
        return true;
    }
    const int vpi = static_cast<int>(record.info >> 24);
    const int vci = static_cast<int>(record.info >> 8 & 0xFFFF);
    return selection.vpi.value_or(vpi) == vpi && selection.vci.value_or(vci) == vci;
}

std::uint32_t first_time(const cases::trace_case& source) {
    return source.records.empty() ? 0 : source.records.front().timestamp_ms;
}

/// The stream of records to one client: collected at full speed, sent when the batch is full or something is waited
/// for.
class record_sender {
public:
    record_sender(const peer& client, const daemon_setup& setup, const fault& trouble,
                  const record_selection& selection)
        : client_(client),
          setup_(setup),
          trouble_(trouble),
          selection_(selection),
          start_(selection.start.value_or(clock_setting{clock::now(), first_time(selection.source)})) {}

    std::uint64_t run();

private:
    bool send_round(std::uint64_t round, const cases::loop_step& step);
    bool send_record(cases::case_record& record, std::uint32_t due_ms);
    void falsify(cases::case_record& record, std::size_t place);
    bool apply_fault();
    bool wait_for_turn(std::uint32_t time_ms);
    [[nodiscard]] clock::time_point due(std::uint32_t time_ms) const;
    bool flush();

    const peer& client_;
    const daemon_setup& setup_;
    const fault& trouble_;
    const record_selection& selection_;
    std::vector<std::uint8_t> batch_;
    std::size_t record_start_ = 0;  // of the newest record in the batch
    clock_setting start_;
    std::uint64_t number_ = 0;  // of the newest record
    std::uint64_t sent_ = 0;
    std::uint32_t start_ms_ = 0;  // of the router's clock when it began anew, and the number of the record before
    std::uint32_t start_sequence_ = 0;
};

std::uint64_t record_sender::run() {
    const cases::loop_step step = cases::step_of(selection_.source.records);
    bool going = !selection_.source.records.empty();
    for (std::uint64_t round = 0; going && (setup_.loops == 0 || round < setup_.loops); ++round) {
        const std::uint64_t before = number_;
        going = send_round(round, step) && number_ != before;
    }
    if (flush() && (trouble_.kind == fault_kind::SILENCE || trouble_.kind == fault_kind::STALL)) {
        client_.wait_for_end();
    }
    return sent_;
}

bool record_sender::send_round(std::uint64_t round, const cases::loop_step& step) {
    const std::vector<cases::case_record>& records = selection_.source.records;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!selects(selection_, records[i])) {
            continue;
        }
        cases::case_record record = records[i];
        const std::uint32_t elapsed = static_cast<std::uint32_t>(round) * step.time_ms;
        const std::uint32_t due_ms = record.timestamp_ms + elapsed;
        falsify(record, i);
        record.timestamp_ms += elapsed;
        record.sequence += static_cast<std::uint32_t>(round) * step.sequence;
        if (!send_record(record, due_ms)) {
            return false;
        }
    }
    return true;
}

/// Gives the record at this place of the case, the next to be sent, the time of its neighbour.
void record_sender::falsify(cases::case_record& record, std::size_t place) {
    const std::vector<cases::case_record>& records = selection_.source.records;
    if (trouble_.kind != fault_kind::SWAP) {
        return;
    }
    if (number_ + 1 == trouble_.record && place + 1 < records.size()) {
        record.timestamp_ms = records[place + 1].timestamp_ms;
    } else if (number_ == trouble_.record && place > 0) {
        record.timestamp_ms = records[place - 1].timestamp_ms;
    }
}

bool record_sender::send_record(cases::case_record& record, std::uint32_t due_ms) {
    const bool silent = trouble_.kind == fault_kind::SILENCE && trouble_.record == sent_;
    if (silent || !wait_for_turn(due_ms)) {
        return false;
    }
    ++number_;
    if (trouble_.kind == fault_kind::RESTART && trouble_.record == number_) {
        start_ms_ = record.timestamp_ms;
        start_sequence_ = record.sequence - 1;
    }
    record.timestamp_ms -= start_ms_;
    record.sequence -= start_sequence_;
    record_start_ = batch_.size();
    cases::append_record(batch_, record, selection_.capture_length);
    if (!apply_fault()) {
        return false;
    }
    ++sent_;
    return batch_.size() < BATCH || flush();
}

/// False when the fault ends the stream.
bool record_sender::apply_fault() {
    if (trouble_.record != number_) {
        return true;
    }
    if (trouble_.kind == fault_kind::RECORD_LENGTH) {
        store_be16(&batch_[record_start_], static_cast<std::uint16_t>(trouble_.length));
        return true;
    }
    const bool ends = trouble_.kind == fault_kind::CUT || trouble_.kind == fault_kind::STALL;
    if (ends) {
        batch_.resize(record_start_ + (batch_.size() - record_start_) / 2);
    }
    return !ends;
}

bool record_sender::wait_for_turn(std::uint32_t time_ms) {
    if (setup_.pace <= 0 && setup_.rate <= 0) {
        return true;
    }
    const clock::time_point when = due(time_ms);
    return clock::now() >= when || (flush() && client_.wait_until(when));
}

clock::time_point record_sender::due(std::uint32_t time_ms) const {
    using seconds = std::chrono::duration<double>;
    const auto since_first = static_cast<std::int32_t>(time_ms - start_.time_ms);
    const double after =
        setup_.rate > 0 ? static_cast<double>(number_) / setup_.rate : since_first / 1000.0 / setup_.pace;
    return start_.when + std::chrono::duration_cast<clock::duration>(seconds(after));
}

bool record_sender::flush() {
    const bool done = client_.send(batch_);
    batch_.clear();
    return done;
}

}  // namespace

bool selects(const record_selection& selection, const cases::case_record& record) {
    const int channel_type = selection.source.channel_type;
    if (channel_type == capture::CHANNEL_ATM || channel_type == capture::CHANNEL_ATM_OLD) {
        return selects_atm(selection, record);
    }
    const auto fields = capture::read_frame_fields(channel_type, record.data);
    return !fields || passes(selection.filter, *fields);
}

std::uint64_t send_records(const peer& client, const daemon_setup& setup, const fault& trouble,
                           const record_selection& selection) {
    return record_sender(client, setup, trouble, selection).run();
}

}  // namespace ifwatch::sim
