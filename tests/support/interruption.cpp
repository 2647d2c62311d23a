#include "support/interruption.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>

namespace ifwatch::test {

namespace {

using namespace std::chrono_literals;

constexpr int TIMES = 3;          // a call that has done a part of its work first returns that
constexpr int MAX_LOOKS = 10000;  // a millisecond apart

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): all that a handler can reach
std::atomic<int> handled = 0;

void count(int /*number*/) { ++handled; }

/// The state stands behind the name, which is in parentheses and may hold anything.
bool is_asleep(const std::string& state_file) {
    std::ifstream file(state_file);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t name_end = text.rfind(") ");
    return name_end != std::string::npos && text[name_end + 2] == 'S';
}

template <class Condition>
void wait_for(Condition condition) {
    for (int i = 0; i < MAX_LOOKS && !condition(); ++i) {
        std::this_thread::sleep_for(1ms);
    }
}

}  // namespace

interruption::interruption(std::function<void()> then)
    : then_(std::move(then)),
      state_file_("/proc/self/task/" + std::to_string(gettid()) + "/stat"),
      target_(pthread_self()) {
    struct sigaction action {};  // without SA_RESTART
    action.sa_handler = count;
    sigaction(SIGUSR1, &action, &former_);
    thread_ = std::thread([this] {
        interrupt();
        then_();
    });
}

interruption::~interruption() {
    thread_.join();
    sigaction(SIGUSR1, &former_, nullptr);
}

void interruption::interrupt() const {
    for (int i = 0; i < TIMES; ++i) {
        wait_for([this] { return is_asleep(state_file_); });
        const int before = handled;
        pthread_kill(target_, SIGUSR1);
        wait_for([before] { return handled != before; });
    }
    wait_for([this] { return is_asleep(state_file_); });
}

}  // namespace ifwatch::test
