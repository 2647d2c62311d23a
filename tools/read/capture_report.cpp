#include "read/capture_report.h"

#include "base/print.h"

namespace ifwatch::read {

namespace {

constexpr std::size_t MOST_NUMBERS = 4096;

// In front of the index of an interface, in what ifwatch-extcap writes.
constexpr std::string_view OWN_PREFIX = "ifwatch-";

std::string name_of(const line_identity& identity, const std::string& title, bool several_lines) {
    const bool own = !identity.router.empty();
    if (own && identity.name.starts_with(OWN_PREFIX)) {
        return identity.name.substr(OWN_PREFIX.size());
    }
    const std::string file = title.substr(title.rfind('/') + 1);  // without its folders, for the sake of the page
    const bool only_number = identity.name == "interface " + std::to_string(identity.number);
    return only_number && !several_lines ? file.substr(0, file.find(": ")) : file + identity.name;
}

}  // namespace

void capture_report::begin_line(const traced_line& line, const std::string& title, bool several_lines) {
    if (numbers_.size() == MOST_NUMBERS) {
        numbers_.clear();
    }
    numbers_.emplace(line.serial,
                     report_.begin_interface(name_of(line.identity, title, several_lines), line.context.channel_type,
                                             line.context.mode_flags, line.identity.router));
}

bool capture_report::print() {
    report_.print();
    return output_error() == 0;
}

}  // namespace ifwatch::read
