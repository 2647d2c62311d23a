#include "support/case_options.h"

#include <string>
#include <vector>

#include "client/options.h"
#include "support/words.h"

namespace ifwatch::test {

std::uint32_t mode_flags_of(const std::string& options_line) {
    std::vector<std::string> words = words_of("ifwatch " + options_line + " router 1000");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    options settings;
    parse_options(static_cast<int>(words.size()), arguments.data(), settings);
    return settings.mode_flags;
}

}  // namespace ifwatch::test
