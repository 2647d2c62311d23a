// Holds the report about a case to the text beside it: report_runner [--accept] CASE REPORT. The records go straight to
// the report, without a program and a capture around it. With --accept the text is written anew: review the change.
// Status 1: it differs; 2: a mistake in the case or on the command line.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "golden/golden_compare.h"
#include "read/report/report_run.h"
#include "support/case_options.h"
#include "support/current_record.h"

namespace {

using namespace ifwatch;

std::string printed;  // NOLINT(*-avoid-non-const-global-variables): an output writer has no other way

long collect(const char* data, std::size_t length) {
    printed.append(data, length);
    return static_cast<long>(length);
}

void take(reporting::report_run& report, std::size_t line, display_context& context, cases::case_record& record) {
    record_header header;
    test::make_current(context, record, header);
    report.take(line, context);
    context.header = nullptr;
}

void make_report(cases::trace_case& trace) {
    set_output_writer(collect);
    display_context context;
    context.channel_type = trace.channel_type;
    context.mode_flags = trace.options.empty() ? 0 : test::mode_flags_of(trace.options.front());
    apply_default_flags(context);
    const std::string name = trace.interface_index ? std::to_string(*trace.interface_index) : std::string();
    reporting::report_run report;
    const std::size_t line = report.begin_interface(name, context.channel_type, context.mode_flags);
    for (cases::case_record& record : trace.records) {
        take(report, line, context, record);
    }
    report.print();
}

int compare(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    const auto different = test::first_difference(expected, printed);
    if (!different) {
        return 0;
    }
    std::cerr << path << ":" << different->line << ": differs\n  expected " << different->expected << "\n  got      "
              << different->got << "\n";
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool accept = !arguments.empty() && arguments.front() == "--accept";
    if (accept) {
        arguments.erase(arguments.begin());
    }
    if (arguments.size() != 2) {
        std::cerr << "usage: report_runner [--accept] CASE REPORT\n";
        return 2;
    }
    cases::trace_case trace;
    std::string error;
    if (!cases::read_case_file(arguments[0], trace, error)) {
        std::cerr << error << "\n";
        return 2;
    }
    make_report(trace);
    if (accept) {
        return std::ofstream(arguments[1], std::ios::binary) << printed ? 0 : 2;
    }
    return compare(arguments[1]);
}
