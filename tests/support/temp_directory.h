#pragma once

#include <string>

namespace ifwatch::test {

/// A directory of its own for a test, removed with everything in it when the object goes.
class temp_directory {
public:
    temp_directory();
    ~temp_directory();
    temp_directory(const temp_directory&) = delete;
    temp_directory& operator=(const temp_directory&) = delete;
    temp_directory(temp_directory&&) = delete;
    temp_directory& operator=(temp_directory&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

    /// Writes a file into it and returns its path, for those who want it.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::string path_;
};

/// The whole text of a file; false when it cannot be read.
bool read_file(const std::string& path, std::string& text);
bool write_file(const std::string& path, const std::string& text);

}  // namespace ifwatch::test
