#include "client/run.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <span>

#include "base/print.h"
#include "base/program_name.h"
#include "base/verbose.h"
#include "client/confinement.h"
#include "client/options.h"
#include "client/signals.h"
#include "client/sinks.h"
#include "client/usage.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "trace/auth.h"
#include "trace/channel_test.h"
#include "trace/pcap.h"
#include "trace/record_stream.h"
#include "trace/session.h"
#include "trace/trace_file.h"

namespace ifwatch {

namespace {

/// A standard stream that was closed when the program started is taken by /dev/null: otherwise the connection or the
/// sink would become that stream. It is opened the wrong way round, so that output to it fails and is not lost unseen.
bool occupy_if_closed(int fd) {
    if (fcntl(fd, F_GETFD) >= 0 || open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY) == fd) {
        return true;
    }
    report<"ERROR cannot open %s (%s)\n">("/dev/null", std::strerror(errno));
    return false;
}

bool occupy_standard_streams() {
    return occupy_if_closed(STDIN_FILENO) && occupy_if_closed(STDOUT_FILENO) && occupy_if_closed(STDERR_FILENO);
}

session_settings session_of(const options& settings) {
    return {.host = settings.host,
            .port = settings.port,
            .password = settings.password.text(),
            .list_mode = settings.list_mode};
}

/// Sets the session up, once more when the first attempt names the version to use. The socket, or -1.
int connect_session(options& settings, display_context& context) {
    const session_settings session = session_of(settings);
    const auto addinfo =
        std::span<const std::uint8_t>(settings.addinfo.data).first(static_cast<std::size_t>(settings.addinfo.used));
    int socket_fd = -1;
    int result = open_session(settings.version, socket_fd, session, settings.target, addinfo, context);
    if (result > 0) {
        result = open_session(result, socket_fd, session, settings.target, addinfo, context);
    }
    settings.password.wipe();
    wipe_password_variable();
    wipe_dead_stack();
    return result == 0 ? socket_fd : -1;
}

/// The octets of strangers come next: from here on the process can do no more than the record loop has to.
void confine(int socket_fd, const pcap_sink& sink, sink_kind kind) {
    const int failure =
        confine_to_record_loop({.input_fd = socket_fd, .sink_fd = sink.fd(), .has_pipe = kind == SINK_PIPE});
    if (failure != 0 && verbose_level > 0) {
        report<"not confined to the calls of the record loop (%s)\n">(std::strerror(failure));
    }
}

int receive(int socket_fd, const options& settings, display_context& context) {
    pcap_sink sink;
    if (settings.sink != SINK_NONE &&
        (!sink.open(settings) || write_pcap_header(sink.fd(), context, settings.pcap_linktype) < 0)) {
        return 1;
    }
    confine(socket_fd, sink, settings.sink);
    return receive_records(socket_fd, {.pcap_fd = sink.fd(), .print = settings.print}, context);
}

int trace(options& settings) {
    display_context context;
    init_display_context(context);
    context.tei_filter = settings.tei_filter;
    context.cref_filter = settings.cref_filter;
    context.mode_flags = settings.mode_flags;
    if (settings.trace_file != nullptr) {
        read_trace_file(settings.trace_file, settings.target, context);
        return output_error() == 0 ? 0 : 1;
    }
    const int socket_fd = connect_session(settings, context);
    if (socket_fd < 0) {
        return 1;
    }
    const int status = receive(socket_fd, settings, context);
    close(socket_fd);
    return status;
}

}  // namespace

int run(int argc, char** argv) {
    if (!occupy_standard_streams()) {
        return 1;
    }
    ask_for_terminals();
    survive_file_size_limit();
    if (argc > 0) {
        set_program_name(argv[0]);
        argv[0] = program_name_argument();  // messages about options, too, begin with the name
    }
    options settings;
    switch (parse_options(argc, argv, settings)) {
        case command::SHOW_USAGE:
            return print_usage();
        case command::SHOW_HELP:
            return print_help();
        case command::CHANNEL_TEST:
            channel_test(session_of(settings), settings.target);
            return 1;  // nothing is traced, whatever it found
        case command::TRACE:
            break;
    }
    wipe_dead_stack();  // before the records' context takes its place there
    return trace(settings);
}

}  // namespace ifwatch
