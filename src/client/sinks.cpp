#include "client/sinks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/print.h"
#include "base/program_name.h"
#include "base/verbose.h"
#include "client/analyser.h"
#include "client/signals.h"

namespace ifwatch {

namespace {

constexpr mode_t OWNER_ONLY = S_IRUSR | S_IWUSR;

void build_name(const options& settings, text_sink& name) {
    if (settings.output_name != nullptr) {
        put(name, settings.output_name);
        return;
    }
    const char* const suffix = settings.sink == SINK_PIPE ? "p" : "";
    print_to<"%s/%s-%s-%d.pcap%s">(name, "/tmp", program_name(), settings.host, interface_index(settings.target),
                                   suffix);
}

bool is_standard_stream(const struct stat& file) {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        struct stat stream {};
        if (fstat(fd, &stream) == 0 && stream.st_dev == file.st_dev && stream.st_ino == file.st_ino) {
            return true;
        }
    }
    return false;
}

/// Whether what may have the name already is to give way. A directory and a device are not, nor is a link to a device
/// or to a stream this program was handed, such as /dev/stdout.
bool may_be_removed(const char* name) {
    struct stat entry {};
    if (lstat(name, &entry) != 0) {
        return true;
    }
    if (!S_ISLNK(entry.st_mode)) {
        return S_ISREG(entry.st_mode) || S_ISFIFO(entry.st_mode);
    }
    struct stat target {};
    return stat(name, &target) != 0 ||
           (!S_ISCHR(target.st_mode) && !S_ISBLK(target.st_mode) && !is_standard_stream(target));
}

/// Removes an old file of the name. Returns the flags to open a new one with: where others may write too, as in /tmp,
/// none of them may put a file or a link of their own in its place meanwhile. What stays by right is opened as it is;
/// an old link that could not be removed is not followed.
int make_way(const char* name) {
    if (!may_be_removed(name)) {
        return O_CREAT | O_TRUNC;
    }
    const bool free = unlink(name) == 0 || errno == ENOENT;
    return free ? O_CREAT | O_EXCL : O_CREAT | O_TRUNC | O_NOFOLLOW;
}

bool create_pipe(const char* name) {
    if (verbose_level >= 0) {
        report<"created pipe: %s\n">(name);
    }
    if (mkfifo(name, OWNER_ONLY) != 0) {
        report<"ERROR cannot create pipe %s (%s)\n">(name, std::strerror(errno));
        return false;
    }
    remove_pipe_on_signal(name);
    return true;
}

void find_reader(const char* pipe_name, bool wants_analyser) {
    if (wants_analyser) {
        start_analyser(pipe_name);
    } else if (verbose_level >= 0) {
        report<"start now e.g.: %s %s\n">(DEFAULT_ANALYSER, pipe_name);
    }
}

/// The descriptor, or -1 after a message.
int open_for_writing(const char* name, int flags) {
    if (verbose_level > 0) {
        report<"open file %s\n">(name);
    }
    int fd = -1;
    do {
        fd = open(name, O_WRONLY | O_CLOEXEC | flags, OWNER_ONLY);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        report<"ERROR cannot open %s (%s)\n">(name, std::strerror(errno));
    }
    return fd;
}

}  // namespace

pcap_sink::~pcap_sink() { remove_pipe(); }

bool pcap_sink::open(const options& settings) {
    build_name(settings, name_);
    const char* const name = name_.c_str();
    int flags = make_way(name);
    if (settings.sink == SINK_FILE) {
        report<"created file: %s\n">(name);
    } else if (create_pipe(name)) {
        find_reader(name, settings.start_analyser);
        flags = O_NOFOLLOW;  // the pipe is there
    } else {
        return false;
    }
    fd_ = open_for_writing(name, flags);
    return fd_ >= 0;
}

}  // namespace ifwatch
