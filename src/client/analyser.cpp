#include "client/analyser.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/print.h"
#include "base/verbose.h"
#include "client/signals.h"

namespace ifwatch {

namespace {

constexpr std::size_t MAX_COMMAND_LENGTH = 255;
constexpr std::size_t MAX_WORDS = 40;

using word_list = std::array<char*, MAX_WORDS + 1>;  // ended by a null pointer

/// Cuts the command at its blanks and returns how many words it holds; a blank at its end starts one more, empty.
std::size_t split_words(char* command, word_list& words) {
    std::size_t count = 0;
    words[count++] = command;
    for (char* blank = nullptr; count < MAX_WORDS && (blank = std::strchr(command, ' ')) != nullptr;) {
        *blank = '\0';
        command = blank + 1 + std::strspn(blank + 1, " ");
        words[count++] = command;
    }
    words[count] = nullptr;
    return count;
}

[[noreturn]] void become(word_list& words) {
    restore_file_size_limit();
    execvp(words[0], words.data());
    report<"\nERROR exec: %s (%s)\n">(words[0], std::strerror(errno));
    report<"\tstart now manually or set $%s (default: \"%s\")\n">("TRACE_EXEC", DEFAULT_ANALYSER);
    _exit(1);
}

}  // namespace

void start_analyser(const char* pipe_name) {
    const char* chosen = std::getenv("TRACE_EXEC");
    if (chosen != nullptr && *chosen != '\0') {
        if (verbose_level >= 0) {
            report<"start prog $%s\n">("TRACE_EXEC");
        }
    } else {
        chosen = DEFAULT_ANALYSER;
    }
    char command[MAX_COMMAND_LENGTH + 1]{};
    text_sink writer{command, MAX_COMMAND_LENGTH};
    print_to<"%s %s">(writer, chosen, pipe_name);
    exec_cmd(command);
}

void exec_cmd(char* command) {
    if (verbose_level >= 0) {
        report<"starting: %s\n">(command);
    }
    word_list words{};
    const std::size_t count = split_words(command, words);
    for (std::size_t i = 0; verbose_level > 1 && i <= count; ++i) {
        report<"exec_cmd: args %d: %s\n">(i, words[i]);
    }
    const pid_t child = fork();
    if (child == 0) {
        become(words);
    }
    if (child > 0 && verbose_level > 2) {
        report<"started pid %d\n">(child);
    }
}

}  // namespace ifwatch
