#include "capture/own_capture.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "capture/pcapng_blocks.h"

namespace ifwatch::capture {

namespace {

constexpr std::string_view INTERFACE_TYPE = "interface type ";
constexpr std::string_view EVENTS = ", events";

constexpr line_error LINE_ERRORS[] = {
    {3, 0, "line error: aborted"},
    {4, PACKET_CRC_ERROR, "line error: CRC"},
    {5, PACKET_UNALIGNED, "line error: no whole number of octets"},
    {6, 0, "line error: receiver overrun"},
};

/// Takes the words and the number behind them off the text. False, with the text as it was, where they are not there.
template <class Number>
bool take(std::string_view& text, std::string_view words, int base, Number& number) {
    if (!text.starts_with(words)) {
        return false;
    }
    const std::string_view rest = text.substr(words.size());
    const auto [stop, problem] = std::from_chars(rest.data(), rest.data() + rest.size(), number, base);
    if (problem != std::errc{}) {
        return false;
    }
    text = rest.substr(static_cast<std::size_t>(stop - rest.data()));
    return true;
}

}  // namespace

std::string interface_type_comment(int channel_type, bool events) {
    std::string comment(INTERFACE_TYPE);
    comment += std::to_string(channel_type);
    comment += events ? EVENTS : "";
    return comment;
}

std::optional<noted_interface> parse_interface_comment(std::string_view comment) {
    noted_interface noted;
    if (!take(comment, INTERFACE_TYPE, 10, noted.channel_type) || (!comment.empty() && comment != EVENTS)) {
        return std::nullopt;
    }
    noted.events = !comment.empty();
    return noted;
}

std::array<std::uint8_t, 6> pabx_front(std::string_view comment) {
    std::array<std::uint8_t, 6> front{};
    std::uint32_t call = 0;
    if (take(comment, "port ", 10, front[0]) && take(comment, ":", 10, front[1]) &&
        take(comment, ", call 0x", 16, call)) {
        for (std::size_t i = 0; i < sizeof call; ++i) {
            front[2 + i] = static_cast<std::uint8_t>(call >> (8 * i));
        }
    }
    return front;
}

const line_error* find_line_error(std::uint32_t event) {
    const auto* const found = std::ranges::find(LINE_ERRORS, event, &line_error::event);
    return found != std::end(LINE_ERRORS) ? found : nullptr;
}

const line_error* find_line_error(std::uint32_t packet_flags, std::string_view comment) {
    const auto* const found = std::ranges::find_if(LINE_ERRORS, [&](const line_error& row) {
        return (packet_flags & row.flag) != 0 || comment.ends_with(row.text);
    });
    return found != std::end(LINE_ERRORS) ? found : nullptr;
}

}  // namespace ifwatch::capture
