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

/// Whether the name stands for an old file that may give way. A directory and a device may not, nor may a link to a
/// device or to a stream this program was handed, such as /dev/stdout.
bool may_be_removed(const char* name) {
    struct stat entry {};
    if (lstat(name, &entry) != 0) {
        return false;
    }
    if (!S_ISLNK(entry.st_mode)) {
        return S_ISREG(entry.st_mode) || S_ISFIFO(entry.st_mode);
    }
    struct stat target {};
    return stat(name, &target) != 0 ||
           (!S_ISCHR(target.st_mode) && !S_ISBLK(target.st_mode) && !is_standard_stream(target));
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
int open_for_writing(const char* name) {
    if (verbose_level > 0) {
        report<"open file %s\n">(name);
    }
    int fd = -1;
    do {
        fd = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, OWNER_ONLY);
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
    if (may_be_removed(name)) {
        unlink(name);
    }
    if (settings.sink == SINK_FILE) {
        report<"created file: %s\n">(name);
    } else if (create_pipe(name)) {
        find_reader(name, settings.start_analyser);
    } else {
        return false;
    }
    fd_ = open_for_writing(name);
    return fd_ >= 0;
}

}  // namespace ifwatch
