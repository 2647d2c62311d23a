#include "base/program_name.h"

#include <algorithm>

namespace ifwatch {

namespace {

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): a process has one
char name[PROGRAM_NAME_LENGTH + 1] = "ifwatch";

}  // namespace

void set_program_name(const char* path) {
    if (path == nullptr) {
        return;
    }
    std::string_view last = path;
    last.remove_prefix(last.rfind('/') + 1);  // npos + 1 is 0: no '/', the whole path
    last = last.substr(0, PROGRAM_NAME_LENGTH);
    *std::copy(last.begin(), last.end(), name) = '\0';
}

std::string_view program_name() { return name; }

char* program_name_argument() { return name; }

}  // namespace ifwatch
