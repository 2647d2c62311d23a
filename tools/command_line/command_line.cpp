#include "command_line/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace ifwatch {

namespace {

constexpr const char* NO_ARGUMENT = "true";  // what CLI11 passes on in its place

/// What stands behind an option whose argument may be left out; reversed_words() leaves it its "=".
std::string argument_behind(const std::string& given) {
    return given == NO_ARGUMENT ? "" : given.substr(given.find('=') + 1);
}

}  // namespace

/// CLI11, and what went wrong first.
struct command_line::parser {
    CLI::App app;
    std::string mistake;

    void note(const std::string& problem) { mistake = mistake.empty() ? problem : mistake; }

    /// An option that is read where it stands, instead of when all are known.
    CLI::Option* add(const std::string& names, const std::string& takes, argument_reader read, bool may_be_left_out) {
        const std::string name = names.substr(names.find("--"));
        CLI::callback_t read_first = [=, this, read = std::move(read)](const CLI::results_t& given) {
            const std::string text = may_be_left_out ? argument_behind(given.front()) : given.front();
            if (!read(text)) {
                note(name + " takes " + takes + ", not " + in_quotes(text));
            }
            return true;
        };
        return app.add_option(names, std::move(read_first))->trigger_on_parse();
    }
};

namespace {

/// The words in the order that CLI11 asks for, the last one first. An empty argument behind "--name=" becomes a word of
/// its own, or the next word would be taken for the argument; one that may be left out keeps its "=", which tells it
/// from NO_ARGUMENT.
std::vector<std::string> reversed_words(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> words;
    bool is_argument = false;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const CLI::Option* const named = is_argument ? nullptr : app.get_option_no_throw(word.substr(0, equals));
        const bool takes_argument = named != nullptr && named->get_expected_min() > 0;
        words.push_back(word);
        if (takes_argument && equals == word.size() - 1) {
            words.back().pop_back();
            words.emplace_back();
        } else if (named != nullptr && !takes_argument && equals != std::string::npos) {
            words.back().insert(equals, "=");
        }
        is_argument = takes_argument && equals == std::string::npos;
    }
    std::reverse(words.begin(), words.end());
    return words;
}

}  // namespace

argument_reader any_text(std::string& variable) {
    return [&variable](const std::string& text) {
        variable = text;
        return true;
    };
}

argument_reader nonempty_text(std::string& variable) {
    return [&variable](const std::string& text) {
        variable = text;
        return !text.empty();
    };
}

command_line::command_line() : parser_(std::make_unique<parser>()) {
    parser_->app.set_help_flag();  // none of its own
    parser_->app.allow_extras();
}

command_line::~command_line() = default;

void command_line::option(const std::string& names, const std::string& takes, argument_reader read) {
    // "--port: 1 required argument (a port) is missing"
    parser_->add(names, takes, std::move(read), false)->type_name("argument (" + takes + ") is");
}

void command_line::option_or_flag(const std::string& names, const std::string& takes, argument_reader read) {
    parser_->add(names, takes, std::move(read), true)->expected(0);
}

void command_line::flag(const std::string& names, std::function<void()> act) {
    option_or_flag(names, "no argument", [act = std::move(act)](const std::string& text) {
        if (text.empty()) {
            act();
        }
        return text.empty();
    });
}

void command_line::flag(const std::string& names, bool& variable) {
    flag(names, [&variable] { variable = true; });
}

void command_line::help(const std::string& names, bool& asked) {
    flag(names, [&asked] {
        asked = true;
        throw CLI::CallForHelp();
    });
}

bool command_line::parse(int argc, char** argv, std::vector<std::string>& operands, std::string& mistake) {
    std::vector<std::string> others;
    bool right = parse_known(argc, argv, others, mistake);
    bool only_operands = false;
    for (const std::string& word : others) {
        if (only_operands || word.size() < 2 || word.front() != '-') {
            operands.push_back(word);
        } else if (word == "--") {
            only_operands = true;
        } else if (right) {
            right = false;
            mistake = on_one_line("unknown option " + in_quotes(word));
        }
    }
    return right;
}

bool command_line::parse_known(int argc, char** argv, std::vector<std::string>& others, std::string& mistake) {
    try {
        parser_->app.parse(reversed_words(parser_->app, argc, argv));
    } catch (const CLI::CallForHelp&) {
        // What stands in front of it is read.
    } catch (const CLI::ParseError& problem) {
        parser_->note(problem.what());
    }
    others = parser_->app.remaining();
    mistake = on_one_line(parser_->mistake);
    return mistake.empty();
}

}  // namespace ifwatch
