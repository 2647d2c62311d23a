#include "capture/capture_reader.h"

#include <cstring>

#include "capture/packet_format.h"
#include "capture/pcap_reader.h"
#include "capture/pcapng_reader.h"

namespace ifwatch::capture {

namespace {

/// A stream that is no capture.
class unknown_format : public packet_format {
public:
    using packet_format::packet_format;

    packet_read next(captured_packet& /*packet*/) override {
        constexpr std::size_t magic_length = 4;
        const std::size_t held = stream().hold(magic_length).size();
        if (held == 0) {
            return damaged("offset 0", "the file is empty");
        }
        if (held < magic_length) {
            return damaged("offset 0", "the number that tells its format is " + cut_off(magic_length, held));
        }
        return damaged("offset 0", "this is no PCAP or pcapng file");
    }

    [[nodiscard]] const capture_interface& interface_of(const captured_packet& /*packet*/) const override {
        return none_;
    }

private:
    capture_interface none_;
};

std::unique_ptr<packet_format> find_format(byte_stream& stream) {
    if (is_pcap(stream)) {
        return std::make_unique<pcap_format>(stream);
    }
    if (is_pcapng(stream)) {
        return std::make_unique<pcapng_format>(stream);
    }
    return std::make_unique<unknown_format>(stream);
}

}  // namespace

packet_read packet_format::damaged(const std::string& place, const std::string& reason) {
    const int error = stream_.error();
    error_ = error != 0 && stream_.offset() == 0 ? std::strerror(error)
                                                 : place + ": " + (error != 0 ? std::strerror(error) : reason);
    return packet_read::DAMAGED;
}

std::string packet_place(std::uint64_t number, std::uint64_t offset) {
    return "packet " + std::to_string(number) + " at offset " + std::to_string(offset);
}

std::string cut_off(std::uint64_t whole, std::uint64_t held) {
    return "cut off: " + std::to_string(held) + " of " + std::to_string(whole) + " octets held";
}

std::string announced_and_held(std::uint64_t announced, std::uint64_t held) {
    return std::to_string(announced) + " octets announced, " + std::to_string(held) + " held";
}

capture_reader::capture_reader(byte_stream& stream) : stream_(stream) {}
capture_reader::~capture_reader() = default;

packet_read capture_reader::next(captured_packet& packet) {
    if (format_ == nullptr) {
        format_ = find_format(stream_);
    }
    return last_ == packet_read::PACKET ? last_ = format_->next(packet) : last_;
}

const capture_interface& capture_reader::interface_of(const captured_packet& packet) const {
    return format_->interface_of(packet);
}

std::size_t capture_reader::interface_count() const { return format_->interface_count(); }

const std::string& capture_reader::error() const { return format_->error(); }

}  // namespace ifwatch::capture
