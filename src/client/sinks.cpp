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

/// Removes an old file of the name. Returns the flags to open the sink with. Where others may write, too, as in /tmp,
/// none of them may put a file or a link of their own in its place: only a name that the user chose is followed, and
/// only when it stood for a device or a stream of this program.
int make_way(const char* name, bool chosen) {
    const bool removable = may_be_removed(name);
    if (removable && (unlink(name) == 0 || errno == ENOENT)) {
        return O_CREAT | O_EXCL;
    }
    return removable || !chosen ? O_NOFOLLOW : 0;
}

/// Whether a sink that was there before it was opened is one to write to: a device, a stream of this program, or a file
/// or pipe of this user's own under no other name (or under none: its reader may be quick to remove it).
bool is_ours(int fd) {
    struct stat file {};
    const bool known = fstat(fd, &file) == 0;
    const bool own =
        file.st_uid == geteuid() && file.st_nlink <= 1 && (S_ISREG(file.st_mode) || S_ISFIFO(file.st_mode));
    return known && (own || S_ISCHR(file.st_mode) || S_ISBLK(file.st_mode) || is_standard_stream(file));
}

bool create_pipe(const char* name) {
    if (verbose_level >= 0) {
        report<"created pipe: %s\n">(name);
    }
    const held_signals held;  // between the two nobody would remove the pipe
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

int open_sink(const char* name, int flags) {
    int fd = -1;
    do {
        fd = open(name, O_WRONLY | O_CLOEXEC | flags, OWNER_ONLY);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0 || (flags & O_EXCL) != 0) {
        return fd;
    }
    if (!is_ours(fd)) {
        close(fd);
        errno = EPERM;
        return -1;
    }
    // Only a file can be cut, and only one that was there needs it.
    static_cast<void>(ftruncate(fd, 0) == 0);
    return fd;
}

/// The descriptor, or -1 after a message.
int open_for_writing(const char* name, int flags) {
    if (verbose_level > 0) {
        report<"open file %s\n">(name);
    }
    const int fd = open_sink(name, flags);
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
    int flags = make_way(name, settings.output_name != nullptr);
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
