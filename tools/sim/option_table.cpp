#include "sim/option_table.h"

#include <getopt.h>

#include <utility>

#include "sim/text_parts.h"

namespace ifwatch::sim {

namespace {

constexpr int FIRST_CODE = 1000;  // of the long options, beyond any character

std::vector<option> long_options(const std::vector<option_form>& forms) {
    std::vector<option> longs;
    for (const option_form& form : forms) {
        const int code = FIRST_CODE + static_cast<int>(longs.size());
        longs.push_back({form.name, form.takes != nullptr ? required_argument : no_argument, nullptr, code});
    }
    longs.push_back({});
    return longs;
}

/// The colon in front: a missing argument is told from an unknown option.
std::string letters(const std::vector<option_form>& forms) {
    std::string text = ":";
    for (const option_form& form : forms) {
        if (form.letter != 0) {
            text += form.letter;
            text += form.takes != nullptr ? ":" : "";
        }
    }
    return text;
}

/// The index of the option with this code or letter; -1 when there is none.
int index_of(const std::vector<option_form>& forms, int code) {
    for (std::size_t i = 0; i < forms.size(); ++i) {
        if (code == FIRST_CODE + static_cast<int>(i) || (forms[i].letter != 0 && forms[i].letter == code)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace

option_walk::option_walk(int argc, char** argv, std::vector<option_form> forms)
    : argc_(argc), argv_(argv), forms_(std::move(forms)) {
    opterr = 0;
    optind = 0;  // so that getopt_long starts afresh with every command line
}

int option_walk::next() {
    const int code = getopt_long(argc_, argv_, letters(forms_).c_str(), long_options(forms_).data(), nullptr);
    if (code == -1) {
        return END;
    }
    if (code != '?' && code != ':') {
        return index_of(forms_, code);
    }
    const int meant = index_of(forms_, optopt);
    if (meant < 0) {
        const bool by_letter = optopt != 0;
        mistake_ =
            "unknown option " + in_quotes(by_letter ? std::string("-") + static_cast<char>(optopt) : argv_[optind - 1]);
        return MISTAKE;
    }
    const option_form& form = forms_[static_cast<std::size_t>(meant)];
    mistake_ =
        "--" + std::string(form.name) +
        (form.takes == nullptr ? " takes no argument" : " takes " + std::string(form.takes) + ", and none is given");
    return MISTAKE;
}

std::string option_walk::argument() { return optarg != nullptr ? optarg : ""; }

std::string option_walk::mistake() const { return mistake_; }

std::vector<std::string> option_walk::operands() const { return {argv_ + optind, argv_ + argc_}; }

}  // namespace ifwatch::sim
