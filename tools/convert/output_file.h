#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ifwatch::convert {

/// A file that is written part by part: it appears complete under its name or not at all, and an old one stays until
/// then. What is no regular file, such as a device or a pipe, is written to at once; an empty path is the standard
/// output.
class output_file {
public:
    explicit output_file(std::string path) : path_(std::move(path)) {}
    ~output_file();
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;
    output_file(output_file&&) = delete;
    output_file& operator=(output_file&&) = delete;

    /// Opens the file, writes a part of it, gives it its name. False with the name and the reason in `error`; then
    /// nothing is left of it.
    bool open(std::string& error);
    bool write(std::string_view part, std::string& error);
    bool finish(std::string& error);

private:
    bool fail(std::string& error) const;

    std::string path_;
    std::string unfinished_;  // its name until it is complete; empty: none
    int fd_ = -1;
};

/// Writes a whole file in one.
bool write_output(const std::string& path, std::string_view text, std::string& error);
bool write_output(const std::string& path, std::span<const std::uint8_t> octets, std::string& error);

}  // namespace ifwatch::convert
