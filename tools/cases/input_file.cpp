#include "cases/input_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace ifwatch::cases {

bool read_input(const std::string& path, std::string& octets, std::string& error) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::array<char, 65536> part{};
    octets.clear();
    while (file.is_open() && file && octets.size() <= MAX_INPUT_FILE) {
        file.read(part.data(), part.size());
        octets.append(part.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (!file.is_open() || file.bad()) {
        error = path + ": " + std::strerror(errno != 0 ? errno : EIO);
        return false;
    }
    if (octets.size() > MAX_INPUT_FILE) {
        error = path + ": has more than " + std::to_string(MAX_INPUT_FILE) + " octets";
        return false;
    }
    return true;
}

}  // namespace ifwatch::cases
