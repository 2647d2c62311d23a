// Part of ifwatch where coverage is measured, and nowhere else: what a run has counted is written when `main` returns,
// but a signal handler and a child without its program end in other ways. The linker's --wrap leads those ends here.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void lift(decltype(RLIMIT_NOFILE) what) {
    rlimit limit{};
    if (getrlimit(what, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(what, &limit);
    }
}

/// What a test has limited must not keep the counts from being written; and where they cannot be written, as by another
/// user, the program has nothing to say about it. Runs also before they are written at the end of `main`.
[[gnu::destructor]] void prepare() {
    lift(RLIMIT_NOFILE);
    lift(RLIMIT_FSIZE);
    lift(RLIMIT_AS);
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
}

}  // namespace

extern "C" {

// The names are those of the compiler's library and of the linker.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void __gcov_dump();
[[noreturn]] void __real__exit(int status);
int __real_raise(int number);

[[noreturn]] void __wrap__exit(int status) {
    prepare();
    __gcov_dump();
    __real__exit(status);
}

int __wrap_raise(int number) {
    prepare();
    __gcov_dump();
    return __real_raise(number);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}
