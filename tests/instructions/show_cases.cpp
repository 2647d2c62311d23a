// Shows the records of case files for whoever counts what that takes: each file, under all its options lines, in one
// call of show_case, which reads no file and prints to nowhere. Usage: show_cases CASE...

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "support/case_options.h"
#include "support/current_record.h"

namespace {

using namespace ifwatch;

/// A case, and the mode flags of each of its options lines.
struct shown_case {
    cases::trace_case trace;
    std::vector<std::uint32_t> mode_flags;
};

long discard(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

bool read_case(const std::string& path, shown_case& what) {
    std::string error;
    if (!cases::read_case_file(path, what.trace, error)) {
        write_errors(error + "\n");
        return false;
    }
    for (const std::string& options : what.trace.options) {
        what.mode_flags.push_back(test::mode_flags_of(options));
    }
    return true;
}

void show(display_context& context, cases::case_record& record) {
    record_header header;
    test::make_current(context, record, header);
    display_record(context);
    flush_output();
    context.header = nullptr;
}

}  // namespace

/// By this name the counter finds it.
extern "C" [[gnu::noinline]] void show_case(shown_case& what, display_context& context) {
    for (const std::uint32_t mode_flags : what.mode_flags) {
        init_display_context(context);
        context.mode_flags = mode_flags;
        context.channel_type = what.trace.channel_type;
        apply_default_flags(context);
        for (cases::case_record& record : what.trace.records) {
            show(context, record);
        }
    }
}

int main(int argc, char** argv) {
    set_output_writer(discard);
    const auto context = std::make_unique<display_context>();
    for (const std::string path : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        shown_case what;
        if (!read_case(path, what)) {
            return 1;
        }
        show_case(what, *context);
    }
    return 0;
}
