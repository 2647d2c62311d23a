#include "convert/capture_import.h"

#include <array>

#include "capture/capture_reader.h"
#include "cases/case_text.h"
#include "trace/ifc_types.h"

namespace ifwatch::convert {

namespace {

constexpr std::size_t PART = std::size_t{256} << 10;  // of the text

std::string channel_text(int channel_type) {
    return std::to_string(channel_type) + " (" + ifc_type_entry(channel_type).name + ")";
}

std::string title_of(std::string_view name, std::uint32_t link_type, const capture::link_kind* kind) {
    std::string title = std::string(name) + ": link type " + std::to_string(link_type);
    return kind != nullptr ? title + " (" + kind->name + ")" : title;
}

class capture_import {
public:
    capture_import(capture::byte_stream& stream, const import_settings& settings, std::string_view name,
                   const text_part_writer& write)
        : reader_(stream), settings_(settings), name_(name), write_(write) {
        clock_.start_ms = settings.start_ms;
        clock_.keeps_routers_own = false;
    }

    import_outcome run() {
        using capture::packet_read;
        capture::captured_packet packet;
        packet_read last = reader_.next(packet);
        while (last == packet_read::PACKET && take(packet) && flush(PART)) {
            last = reader_.next(packet);
        }
        if (last == packet_read::END && !begun_) {
            begin(reader_.interface_of(packet));
        }
        if (last == packet_read::DAMAGED) {
            outcome_.error = reader_.error();
        }
        if (outcome_.error.empty() && outcome_.written) {
            text_ += "# " + std::to_string(outcome_.packets) + (outcome_.packets == 1 ? " packet\n" : " packets\n");
            flush(1);
        }
        outcome_.done = outcome_.error.empty() && outcome_.written;
        return std::move(outcome_);
    }

private:
    /// Writes what stands in front of the records.
    bool begin(const capture::capture_interface& described) {
        const auto source = find_source(described);
        if (!source) {
            return false;
        }
        begun_ = true;
        head_.channel_type = settings_.channel_type.value_or(source->channel_type);
        if (!rule_applies(settings_.sent, head_.channel_type)) {
            return fail("the address of --sent is not in the frames of channel type " +
                        channel_text(head_.channel_type));
        }
        const capture::link_kind* const kind = capture::find_link_kind(described.link_type);
        const bool fits = kind != nullptr && kind->channel_type == head_.channel_type;
        head_.interface_index = settings_.interface_index;
        head_.options = {settings_.viewer_options.value_or(fits ? kind->viewer_options
                                                                : capture::viewer_options_of(head_.channel_type))};
        text_ = cases::case_text(head_, title_of(name_, described.link_type, kind));
        return true;
    }

    std::optional<capture::packet_source> find_source(const capture::capture_interface& described) {
        const auto source = capture::find_packet_source(described, settings_.channel_type);
        if (!source) {
            fail("link type " + std::to_string(described.link_type) + " fits no channel type; name one with --channel");
        }
        return source;
    }

    /// Makes a packet a record, or leaves it out. False when it cannot be.
    bool take(const capture::captured_packet& packet) {
        const capture::capture_interface& described = reader_.interface_of(packet);
        const auto source = find_source(described);
        if (!source) {
            return false;
        }
        ++outcome_.packets;
        if (settings_.channel_type && *settings_.channel_type != source->channel_type) {
            ++outcome_.left_out;
            return true;
        }
        if (!begun_ && !begin(described)) {
            return false;
        }
        if (source->channel_type != head_.channel_type) {
            return fail(capture::packet_place(packet.number, packet.offset) + ": it is of channel type " +
                        channel_text(source->channel_type) + ", those before it of " +
                        channel_text(head_.channel_type) +
                        (source->own ? "; name the one of the case with --channel"
                                     : "; a case is one interface: split the capture first"));
        }
        return append(packet, *source, described.link_type);
    }

    bool append(const capture::captured_packet& packet, const capture::packet_source& source, std::uint32_t link_type) {
        capture::packet_record made;
        if (!make_packet_record(packet, source, settings_.sent, clock_, data_, made)) {
            return fail(capture::short_packet_text(packet, link_type));
        }
        const std::uint32_t counted = sequence_ + 1 + capture::told_loss(packet.lost);
        const std::uint32_t usual_sequence = sequence_ + 1;
        sequence_ = made.own_sequence ? made.header.sequence : counted;
        cases::append_record(text_,
                             {.timestamp_ms = made.header.timestamp_ms,
                              .flags = made.header.record_flags,
                              .info = made.header.channel_info,
                              .sequence = sequence_,
                              .original_length = static_cast<std::uint16_t>(made.original_length),
                              .data = made.octets},
                             usual_sequence);
        return true;
    }

    bool fail(std::string error) {
        outcome_.error = std::move(error);
        return false;
    }

    /// Writes the text when there is so much.
    bool flush(std::size_t least) {
        if (text_.size() >= least) {
            outcome_.written = write_(text_);
            text_.clear();
        }
        return outcome_.written;
    }

    capture::capture_reader reader_;
    const import_settings& settings_;
    std::string_view name_;
    const text_part_writer& write_;
    capture::record_clock clock_;
    cases::trace_case head_;  // without records
    bool begun_ = false;
    std::array<std::uint8_t, RECORD_DATA_MAXIMUM> data_{};
    std::uint32_t sequence_ = 0;
    std::string text_;
    import_outcome outcome_;
};

}  // namespace

import_outcome import_capture(capture::byte_stream& stream, const import_settings& settings, std::string_view name,
                              const text_part_writer& write) {
    return capture_import(stream, settings, name, write).run();
}

}  // namespace ifwatch::convert
