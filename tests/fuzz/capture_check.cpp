#include "capture_check.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <string>

#include "capture/packet_record.h"
#include "display_check.h"

namespace ifwatch::fuzz {

namespace {

using namespace capture;

/// What has to hold of each packet behind the one before.
class packet_check {
public:
    explicit packet_check(std::uint64_t size) : size_(size) {}

    void check(const captured_packet& packet, const capture_interface& from) {
        require(packet.number == ++number_, "packets are counted from 1");
        require(number_ == 1 || packet.offset > offset_, "each packet stands behind the one before");
        require(packet.offset < size_, "it stands in the file");
        offset_ = packet.offset;
        require(packet.data.size() <= captured_packet::MAX_KEPT, "what is kept has a bound");
        require(packet.data.size() <= packet.captured_length, "no more than was captured is kept");
        require(packet.captured_length <= packet.original_length, "the line had at least what was captured");
        require(packet.captured_length <= size_, "what was captured is in the file");
        require(packet.comment.size() <= capture_interface::MAX_TEXT, "a comment has a bound");
        require(from.name.size() <= capture_interface::MAX_TEXT && from.comment.size() <= capture_interface::MAX_TEXT &&
                    from.description.size() <= capture_interface::MAX_TEXT,
                "the texts of an interface have a bound");
    }

private:
    std::uint64_t size_;
    std::uint64_t number_ = 0;
    std::uint64_t offset_ = 0;
};

void check_record(const captured_packet& packet, const packet_source& source, record_clock& clock) {
    static std::array<std::uint8_t, RECORD_DATA_MAXIMUM> data{};
    packet_record made;
    if (make_packet_record(packet, source, sent_nothing{}, clock, data, made)) {
        require(made.octets.size() <= RECORD_DATA_MAXIMUM, "a record has a bound");
        require(made.original_length <= 0xFFFF, "a record's length on the line has a bound");
        require(made.own_sequence || (made.header.record_flags & ~0x81U) == 0, "others note nothing in the flags");
    } else {
        const std::string why = short_packet_text(packet, 252);
        require(!why.empty() && why.find('\n') == std::string::npos, "what is wrong is told in one line");
    }
}

}  // namespace

int file_of(std::span<const std::uint8_t> octets) {
    static const int INPUT_FD = memfd_create("capture", MFD_CLOEXEC);
    require(INPUT_FD >= 0 && ftruncate(INPUT_FD, 0) == 0, "there is a file");
    require(pwrite(INPUT_FD, octets.data(), octets.size(), 0) == static_cast<ssize_t>(octets.size()),
            "it holds the input");
    lseek(INPUT_FD, 0, SEEK_SET);
    return INPUT_FD;
}

void check_capture(std::span<const std::uint8_t> file, int channel_type) {
    byte_stream stream(file_of(file));
    capture_reader reader(stream);
    packet_check packets(file.size());
    record_clock clock;
    captured_packet packet;
    packet_read last = reader.next(packet);
    while (last == packet_read::PACKET) {
        const capture_interface& from = reader.interface_of(packet);
        packets.check(packet, from);
        if (const auto source = find_packet_source(from, std::nullopt)) {
            check_record(packet, *source, clock);
        }
        check_record(packet, *find_packet_source(from, channel_type), clock);
        last = reader.next(packet);
    }
    require(stream.offset() <= file.size(), "no more is read than there is");
    if (last == packet_read::END) {
        require(stream.offset() == file.size() && reader.error().empty(), "the end is that of the file");
    } else {
        require(!reader.error().empty() && reader.error().find('\n') == std::string::npos,
                "damage is told in one line");
    }
    require(reader.next(packet) == last, "the end stays the end");
}

}  // namespace ifwatch::fuzz
