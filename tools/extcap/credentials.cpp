#include "extcap/credentials.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "trace/element.h"

namespace ifwatch::extcap {

namespace {

constexpr int LARGEST_FILE = 16384;
constexpr std::string_view BLANKS = " \t";

/// The text of a file, overwritten when it goes.
struct file_text {
    std::array<char, LARGEST_FILE + 1> octets{};
    std::size_t length = 0;

    file_text() = default;
    ~file_text() { explicit_bzero(octets.data(), octets.size()); }
    file_text(const file_text&) = delete;
    file_text& operator=(const file_text&) = delete;
    file_text(file_text&&) = delete;
    file_text& operator=(file_text&&) = delete;
};

/// Reads an open file. The problem with it; nullptr: none.
const char* read_open_file(int fd, file_text& text) {
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        return std::strerror(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return "it is no file";
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        return "others can reach it; chmod 600 makes it yours alone";
    }
    if (status.st_size > LARGEST_FILE) {
        return "it is longer than 16384 octets";
    }
    // Octets and characters are the same storage.
    auto* const octets = reinterpret_cast<std::uint8_t*>(text.octets.data());
    if (read_n(fd, octets, static_cast<int>(status.st_size)) != status.st_size) {
        return errno != 0 ? std::strerror(errno) : "it became shorter";
    }
    text.length = static_cast<std::size_t>(status.st_size);
    return nullptr;
}

/// Takes the password of a line that fits and has none before it. The problem with the line; nullptr: none.
const char* read_line(std::span<char> line, const std::string& router, secret& password) {
    const std::string_view text(line.data(), line.size());
    const std::size_t begin = text.find_first_not_of(BLANKS);
    if (begin == std::string_view::npos || text[begin] == '#') {
        return nullptr;
    }
    const std::size_t end = text.find_first_of(BLANKS, begin);
    const std::size_t value = text.find_first_not_of(BLANKS, end);
    if (value == std::string_view::npos) {
        return "no password behind the router's name";
    }
    const std::string_view name = text.substr(begin, end - begin);
    if (password.text() == nullptr && (name == "*" || name == router)) {
        password.take(&line[value]);
    }
    return nullptr;
}

}  // namespace

bool read_credentials(const std::string& path, const std::string& router, secret& password, std::string& error) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    file_text text;
    errno = fd < 0 ? errno : 0;
    const char* problem = fd < 0 ? std::strerror(errno) : read_open_file(fd, text);
    if (fd >= 0) {
        close(fd);
    }
    error = problem != nullptr ? "credentials file " + path + ": " + problem : "";
    const std::span<char> all = std::span(text.octets).first(text.length + 1);  // with the zero behind it
    std::size_t begin = 0;
    for (int number = 1; error.empty() && begin < text.length; ++number) {
        const std::string_view rest(&all[begin], text.length - begin);
        const std::size_t length = std::min(rest.find('\n'), rest.size());
        const bool carriage_return = length > 0 && rest[length - 1] == '\r';
        const std::size_t end = begin + length - (carriage_return ? 1 : 0);
        all[end] = '\0';
        if (const char* const mistake = read_line(all.subspan(begin, end - begin), router, password)) {
            error = path + ":" + std::to_string(number) + ": " + mistake;
        }
        begin += length + 1;
    }
    return error.empty();
}

bool find_password(const std::string& credentials, const std::string& router, secret& password, std::string& error) {
    if (!credentials.empty() && !read_credentials(credentials, router, password, error)) {
        return false;
    }
    char* const value = std::getenv("TRACE_PWD");
    if (password.text() == nullptr && value != nullptr) {
        password.take(value);
    }
    if (password.text() == nullptr) {
        error = "no password for " + router + ": set TRACE_PWD, or name it in a credentials file (--credentials)";
    }
    return password.text() != nullptr;
}

}  // namespace ifwatch::extcap
