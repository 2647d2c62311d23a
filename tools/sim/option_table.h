#pragma once

#include <span>
#include <string>
#include <vector>

namespace ifwatch::sim {

/// A row of a table of options. One that is called "help" asks for help.
template <class Settings>
struct known_option {
    const char* name;  // behind --
    char letter;       // behind -; 0: it has none
    bool (*apply)(const std::string& text, Settings& settings);
    const char* takes;  // what an argument must be, for the message; nullptr: no argument
};

/// An option as it goes to the parser of the system.
struct option_form {
    const char* name;
    char letter;
    const char* takes;
};

/// Walks over the options of a command line.
class option_walk {
public:
    static constexpr int END = -1;
    static constexpr int MISTAKE = -2;

    option_walk(int argc, char** argv, std::vector<option_form> forms);

    /// The index of the next option in the table, END behind the last, MISTAKE for one that is not known, lacks its
    /// argument or has one that it does not take.
    int next();

    [[nodiscard]] static std::string argument();              // of the option
    [[nodiscard]] std::string mistake() const;                // what is wrong, in one line
    [[nodiscard]] std::vector<std::string> operands() const;  // what is no option, behind the last

private:
    int argc_;
    char** argv_;
    std::vector<option_form> forms_;
    std::string mistake_;
};

/// Applies the options of a command line to the settings and gives what is no option in `operands`. Help ends the walk
/// with `help` set. False with a one-line `error` when an option cannot be followed.
template <class Settings>
bool apply_options(int argc, char** argv, std::span<const known_option<Settings>> table, Settings& settings,
                   std::vector<std::string>& operands, bool& help, std::string& error) {
    std::vector<option_form> forms;
    for (const known_option<Settings>& known : table) {
        forms.push_back({known.name, known.letter, known.takes});
    }
    option_walk walk(argc, argv, std::move(forms));
    for (int index = walk.next(); index != option_walk::END; index = walk.next()) {
        if (index == option_walk::MISTAKE) {
            error = walk.mistake();
            return false;
        }
        const known_option<Settings>& known = table[static_cast<std::size_t>(index)];
        help = std::string(known.name) == "help";
        if (help) {
            return true;
        }
        if (!known.apply(option_walk::argument(), settings)) {
            error =
                "--" + std::string(known.name) + " takes " + known.takes + ", not '" + option_walk::argument() + "'";
            return false;
        }
    }
    operands = walk.operands();
    return true;
}

}  // namespace ifwatch::sim
