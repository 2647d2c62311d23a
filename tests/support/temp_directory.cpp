#include "support/temp_directory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace ifwatch::test {

temp_directory::temp_directory() {
    std::string name = (std::filesystem::temp_directory_path() / "ifwatch-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a directory like " + name);
    }
    path_ = name;
}

temp_directory::~temp_directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string temp_directory::write(const std::string& name, const std::string& text) const {
    if (!write_file(file(name), text)) {
        throw std::runtime_error("cannot write " + file(name));
    }
    return file(name);
}

bool read_file(const std::string& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream whole;
    if (file.is_open() && file.peek() != std::ifstream::traits_type::eof()) {
        whole << file.rdbuf();
    }
    text = whole.str();
    return file.is_open() && !file.bad() && !whole.bad();
}

bool write_file(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    return !file.fail();
}

}  // namespace ifwatch::test
