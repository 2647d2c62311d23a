#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "command_line/text_parts.h"

namespace ifwatch {

/// Reads the argument of an option into what the option is bound to; false for a text that the option does not take.
using argument_reader = std::function<bool(const std::string& text)>;

/// What `parse` makes of the text, an optional; an empty one is none that the option takes.
template <class Value, class Parse>
argument_reader parsed(Value& variable, Parse parse) {
    return [&variable, parse](const std::string& text) {
        auto value = parse(text);
        if (value) {
            variable = std::move(*value);
        }
        return value.has_value();
    };
}

/// A whole number within bounds, decimal or hexadecimal behind 0x.
template <class Number>
argument_reader number(Number& variable, std::int64_t minimum, std::int64_t maximum) {
    return [&variable, minimum, maximum](const std::string& text) {
        const auto value = parse_number(text, minimum, maximum);
        if (value) {
            variable = static_cast<Number>(*value);
        }
        return value.has_value();
    };
}

/// One of some words.
template <class Value>
argument_reader one_of(Value& variable, std::map<std::string, Value> words) {
    return [&variable, words = std::move(words)](const std::string& text) {
        const auto found = words.find(text);
        if (found != words.end()) {
            variable = found->second;
        }
        return found != words.end();
    };
}

[[nodiscard]] argument_reader any_text(std::string& variable);
[[nodiscard]] argument_reader nonempty_text(std::string& variable);

/// The command line of a tool: its options, each bound to a variable, read by CLI11. Options stand wherever they like,
/// up to "--"; one that is given again counts anew. Names are as in "-o,--output", the long one last.
class command_line {
public:
    command_line();
    command_line(const command_line&) = delete;
    command_line& operator=(const command_line&) = delete;
    ~command_line();

    /// An option with an argument; `takes` says what that is, for the message about any other.
    void option(const std::string& names, const std::string& takes, argument_reader read);
    /// An option whose argument may be left out, and else stands behind a "="; without one, "" is read.
    void option_or_flag(const std::string& names, const std::string& takes, argument_reader read);
    /// An option without an argument.
    void flag(const std::string& names, std::function<void()> act);
    void flag(const std::string& names, bool& variable);
    /// A flag behind which nothing counts any more.
    void help(const std::string& names, bool& asked);

    /// Reads a command line; what is no option goes to `operands`. False with the first mistake, in one line; the
    /// options behind it are read all the same.
    bool parse(int argc, char** argv, std::vector<std::string>& operands, std::string& mistake);

    /// As parse(), but whatever is none of the options above goes to `others`: options of another parser, "--",
    /// operands.
    bool parse_known(int argc, char** argv, std::vector<std::string>& others, std::string& mistake);

private:
    struct parser;
    std::unique_ptr<parser> parser_;
};

}  // namespace ifwatch
