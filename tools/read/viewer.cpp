#include "read/viewer.h"

#include <algorithm>
#include <chrono>

#include "base/print.h"
#include "command_line/text_parts.h"
#include "display/record_display.h"
#include "read/interrupt.h"
#include "read/output.h"
#include "read/progress.h"
#include "read/records.h"
#include "trace/ifc_types.h"

namespace ifwatch::read {

namespace {

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): all that the function called before each read can reach
const capture_records* being_read = nullptr;
int descriptor_read = -1;  // NOLINT(*-avoid-non-const-global-variables): likewise

/// The next octets may be long in coming: what is printed leaves.
bool before_read() {
    flush_output();
    if (being_read != nullptr) {
        show_progress(being_read->octets_read(), being_read->packet().number);
    }
    return !interrupts_are_awaited() || wait_for_octets(descriptor_read);
}

/// "2026-11-22 11:15:52.123456 UTC".
std::string date_text(std::int64_t time_ns) {
    using namespace std::chrono;
    const sys_time<microseconds> time(duration_cast<microseconds>(floor<microseconds>(nanoseconds(time_ns))));
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    text_buffer<64> text;
    print_to<"%04d-%02d-%02d %02d:%02d:%02d.%06ld UTC">(
        text, static_cast<int>(date.year()), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        clock.hours().count(), clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
    return std::string(text.text());
}

std::string type_text(int channel_type) {
    const ifc_type& type = ifc_type_entry(channel_type);
    return type.code == channel_type ? type.name : "interface type " + std::to_string(channel_type);
}

class capture_view {
public:
    capture_view(const open_capture& file, std::string title, const read_options& options, shown_counts& counts,
                 capture_report* report)
        : file_(file),
          title_(std::move(title)),
          counts_(counts),
          report_(report),
          records_(file.fd, before_read, options, counts) {
        being_read = &records_;
        descriptor_read = file.fd;
        if (report_ != nullptr) {
            report_->begin_capture();
        }
    }
    ~capture_view() { being_read = nullptr; }
    capture_view(const capture_view&) = delete;
    capture_view& operator=(const capture_view&) = delete;
    capture_view(capture_view&&) = delete;
    capture_view& operator=(capture_view&&) = delete;

    bool show() {
        for (traced_line* line = records_.next(); line != nullptr && output_error() == 0; line = records_.next()) {
            tell_date();
            tell_missing_address(*line);
            show_record(*line);
            counts_.add_shown();
        }
        const bool written = flush_output();
        erase_progress();
        // Nothing is read of what stands behind damage.
        end_file_progress(std::max(records_.octets_read(), file_.octets.value_or(0)), records_.packet().number);
        // An interrupt may come in the middle of a packet.
        const std::string error = interrupted() ? "" : records_.error();
        if (!error.empty()) {
            say(file_.name + ": " + error);
        }
        return written && error.empty();
    }

private:
    void show_record(traced_line& line) {
        if (report_ != nullptr) {
            if (!report_->knows(line)) {
                report_->begin_line(line, title_, records_.has_several_lines());
            }
            report_->take(line);
            return;
        }
        name_line(line);
        display_record(line.context);
    }

    /// Once, with the first packet that others count from.
    void tell_date() {
        const capture::record_clock& clock = records_.clock();
        if (!date_told_ && clock.first_ns) {
            say(file_.name + ": 000000.000 is " + date_text(*clock.first_ns));
            date_told_ = true;
        }
    }

    /// Once: an address was given to tell what was sent, but the frames of an interface have none.
    void tell_missing_address(const traced_line& line) {
        if (!address_told_ && records_.lacks_address(line)) {
            say(file_.name + ": the address of --sent is not in the frames of " + on_one_line(line.identity.name) +
                " (" + type_text(line.context.channel_type) + "): they count as received");
            address_told_ = true;
        }
    }

    /// Where the line changes, and at the first record where it may change.
    void name_line(const traced_line& line) {
        if (line.serial == shown_last_) {
            return;
        }
        if (shown_last_ != 0 || !title_.empty() || records_.has_several_lines()) {
            print<"=== %s%s: %s\n">(title_, on_one_line(line.identity.name), type_text(line.context.channel_type));
        }
        shown_last_ = line.serial;
    }

    const open_capture& file_;
    std::string title_;
    shown_counts& counts_;
    capture_report* report_;  // nullptr: the records are shown
    capture_records records_;
    std::uint64_t shown_last_ = 0;  // the serial number of its line
    bool date_told_ = false;
    bool address_told_ = false;
};

}  // namespace

bool show_capture(const open_capture& file, const std::string& title, const read_options& options, shown_counts& counts,
                  capture_report* report) {
    return capture_view(file, title, options, counts, report).show();
}

}  // namespace ifwatch::read
