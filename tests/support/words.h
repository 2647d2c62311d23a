#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace ifwatch::test {

/// The words of a text, which white space parts.
[[nodiscard]] inline std::vector<std::string> words_of(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

}  // namespace ifwatch::test
