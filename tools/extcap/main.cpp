#include <cerrno>
#include <cstring>
#include <optional>
#include <string>

#include "base/print.h"
#include "extcap/capture.h"
#include "extcap/filter.h"
#include "extcap/options.h"
#include "extcap/router.h"
#include "extcap/sentences.h"
#include "extcap/session_setup.h"

namespace {

using namespace ifwatch::extcap;

constexpr int STATUS_MISTAKE = 2;

int complain(const failure& why) {
    ifwatch::write_errors("ifwatch-extcap: " + why.text + "\n");
    return why.status;
}

int answer(const std::string& text) {
    put(ifwatch::standard_output, text);
    if (!ifwatch::flush_output()) {
        return complain({1, "cannot write the answer to the standard output"});
    }
    return 0;
}

int reload(const plugin_options& options) {
    if (options.reload_option != "interface") {
        return complain(
            {STATUS_MISTAKE, "--extcap-reload-option: only the values of 'interface' come from the router"});
    }
    failure why;
    router_access access(options);
    if (!access.prepare(why)) {
        return complain(why);
    }
    session_setup question;
    if (!question.start(access, std::nullopt)) {
        return complain({1, std::string("no process to ask the router: ") + std::strerror(errno)});
    }
    access.forget_password();
    const opened_session session = question.take();
    return session.result == set_up::OPEN ? answer(interface_value_sentences(session.listed))
                                          : complain({1, "router " + options.host + ": " + session.reason});
}

/// A wrong filter is an answer, too: the analyser reads it only with exit status 0.
int check_filter(const plugin_options& options) {
    ifwatch::addinfo_buffer elements;
    std::string error;
    return add_capture_filter(options.filter, elements, error) ? 0 : answer(error + "\n");
}

int trace(const plugin_options& options, const std::string& mistake) {
    failure why;
    const auto tell = [](const std::string& text) { complain({1, text}); };
    if (capture(options, mistake, tell, why)) {
        return 0;
    }
    return why.text.empty() ? why.status : complain(why);
}

int run(const plugin_options& options) {
    switch (options.what) {
        case call::HELP:
            return answer(help_text());
        case call::VERSION:
        case call::LIST_INTERFACES:
            return answer(interface_sentences());
        case call::LIST_LINK_TYPES:
            return answer(link_type_sentences());
        case call::LIST_OPTIONS:
            return answer(option_sentences());
        case call::RELOAD_OPTION:
            return reload(options);
        case call::CHECK_FILTER:
            return check_filter(options);
        case call::CAPTURE:
            return trace(options, "");
        case call::CLEAN_UP:
        case call::NONE:
            return 0;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    plugin_options options;
    std::string mistake;
    if (parse_options(argc, argv, options, mistake)) {
        return run(options);
    }
    mistake += " (--help tells more)";
    return options.what == call::CAPTURE && !options.fifo.empty() ? trace(options, mistake)
                                                                  : complain({STATUS_MISTAKE, mistake});
}
