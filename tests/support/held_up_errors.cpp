#include "support/held_up_errors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <vector>

namespace ifwatch::test {

held_up_errors::held_up_errors() {
    if (mkfifo(name().c_str(), 0600) != 0 || (pipe_ = open(name().c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) < 0) {
        throw std::runtime_error("cannot make " + name());
    }
    size_ = fcntl(pipe_, F_SETPIPE_SZ, 1);  // at least a page
}

held_up_errors::~held_up_errors() { close(pipe_); }

void held_up_errors::hold_up_behind(const std::string& messages) {
    const std::string filling(static_cast<std::size_t>(size_) - messages.size(), '-');
    if (write(pipe_, filling.data(), filling.size()) != static_cast<ssize_t>(filling.size())) {
        throw std::runtime_error("cannot fill " + name());
    }
}

std::string held_up_errors::release() {
    const std::lock_guard lock(mutex_);
    char block[4096];
    for (ssize_t count = read(pipe_, block, sizeof block); count > 0; count = read(pipe_, block, sizeof block)) {
        text_.append(block, static_cast<std::size_t>(count));
    }
    text_.erase(0, text_.find_first_not_of('-'));
    return text_;
}

command held_up_errors::of(const command& what) const {
    command result = what;
    result.program = "sh";
    result.arguments = {"-c", R"(exec 2> "$0" "$@")", name(), what.program};
    result.arguments.insert(result.arguments.end(), what.arguments.begin(), what.arguments.end());
    return result;
}

}  // namespace ifwatch::test
