// The least that a tracer can do: the same reads and writes as ifwatch, of the same sizes, and nothing between them.
//
//     floor_reader PORT SIZES          two reads and a write to the standard output for each record
//     floor_reader PORT SIZES FILE     two reads, two writes to the file and one to the error stream for each record
//
// SIZES is a file of 32-bit numbers in the machine's order: how much is written to the standard output for each record.

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "base/byte_order.h"
#include "trace/element.h"

namespace {

using namespace ifwatch;

constexpr int HEADER = 22;
constexpr std::size_t PCAP_HEADER = 16;
constexpr std::size_t COUNTER = 16;

std::vector<std::uint32_t> read_sizes(const char* path) {
    std::vector<std::uint32_t> sizes;
    if (std::FILE* const file = std::fopen(path, "re")) {
        std::uint32_t size = 0;
        while (std::fread(&size, sizeof size, 1, file) == 1) {
            sizes.push_back(size);
        }
        static_cast<void>(std::fclose(file));
    }
    return sizes;
}

int connect_to(const char* port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(std::strtoul(port, nullptr, 10)));
    return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

bool wrote(int fd, const std::uint8_t* data, std::size_t length) {
    while (length != 0) {
        const ssize_t written = write(fd, data, length);
        if (written <= 0) {
            return false;
        }
        data += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

/// Returns how many records there were; -1 when something could not be written.
long pass_records(int fd, const std::vector<std::uint32_t>& sizes, int sink) {
    static std::array<std::uint8_t, 65536> buffer{};
    std::array<std::uint8_t, HEADER> header{};
    long records = 0;
    while (read_n(fd, header.data(), HEADER) == HEADER) {
        const int captured = load_be16(header.data()) - HEADER;
        if (read_n(fd, buffer.data(), captured) != captured) {
            break;
        }
        const std::size_t size = sizes[static_cast<std::size_t>(records) % sizes.size()];
        const bool done = sink < 0 ? wrote(STDOUT_FILENO, buffer.data(), size)
                                   : wrote(sink, buffer.data(), PCAP_HEADER) &&
                                         wrote(sink, buffer.data(), static_cast<std::size_t>(captured)) &&
                                         wrote(STDERR_FILENO, buffer.data(), COUNTER);
        if (!done) {
            return -1;
        }
        ++records;
    }
    return records;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        static_cast<void>(std::fputs("usage: floor_reader PORT SIZES [FILE]\n", stderr));
        return 2;
    }
    const std::vector<std::uint32_t> sizes = read_sizes(argv[2]);
    const int fd = connect_to(argv[1]);
    const int sink = argc == 4 ? open(argv[3], O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600) : -1;
    const std::array<std::uint8_t, 20> request = {0, 0, 0, 1};  // a trace request of version 1
    std::uint8_t acknowledge = 0;
    if (sizes.empty() || fd < 0 || (argc == 4 && sink < 0) || !write_all(fd, request) ||
        read_n(fd, &acknowledge, 1) != 1) {
        std::perror("floor_reader");
        return 1;
    }
    return pass_records(fd, sizes, sink) > 0 ? 0 : 1;
}
