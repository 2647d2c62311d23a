#include "display_check.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "base/byte_order.h"
#include "base/print.h"
#include "display/record_display.h"

namespace ifwatch::fuzz {

namespace {

constexpr std::size_t CHARACTERS_PER_OCTET = 512;
constexpr std::size_t CHARACTERS_PER_RECORD = 4096;
constexpr std::uint32_t FAX_MODES = 3;
constexpr int PPTP_HEADER = 12;

std::size_t printed = 0;  // NOLINT(*-avoid-non-const-global-variables): the writer below has no other place for it

long count_output(const char* /*data*/, std::size_t length) {
    printed += length;
    return static_cast<long>(length);
}

/// The most characters for the current record, counted from what is held before it is shown.
std::size_t output_maximum(const display_context& context) {
    int octets_held = context.payload.held();
    for (const async_state& state : context.async) {
        octets_held += state.count;
    }
    for (const pptp_state& state : context.pptp) {
        octets_held += state.kept();
    }
    return CHARACTERS_PER_OCTET * static_cast<std::size_t>(octets_held) + CHARACTERS_PER_RECORD;
}

void check_async(const async_state& state) {
    require(state.maximum == async_state::MAXIMUM, "async: the maximum stays");
    require(state.count >= 0 && state.room >= 0, "async: nothing is negative");
    require(state.count + state.room == state.maximum, "async: what is stored and what is free make the buffer");
    require(state.escape == 0 || state.escape == 0x20, "async: the escape is on or off");
    require(state.fcs <= 0xFFFF, "async: the check sequence has 16 bits");
}

void check_pptp(const pptp_state& state) {
    require(state.needed >= PPTP_HEADER && state.needed <= 0xFFFF, "pptp: the length of a message has 16 bits");
    require(state.count >= 0 && state.count < state.needed, "pptp: a message that is whole is not kept");
    require(state.phase == 0 || state.phase == 1, "pptp: there are two phases");
    require(state.phase == 1 || state.needed == PPTP_HEADER, "pptp: the header comes first");
}

}  // namespace

taken_record take_record(std::span<const std::uint8_t> input, int step_ms, record_header& header,
                         display_context& context) {
    header.record_flags = load_be32(input.data());
    header.channel_info = load_be32(&input[4]);
    header.timestamp_ms += static_cast<std::uint32_t>(static_cast<std::int8_t>(input[10]) * step_ms);
    header.sequence += 1U + (input[10] & 1U);
    const std::size_t length =
        std::min({std::size_t{load_be16(&input[11])}, input.size() - RECORD_HEADER, std::size_t{RECORD_DATA_MAXIMUM}});
    auto data = std::make_unique<std::uint8_t[]>(length);
    std::copy_n(input.begin() + RECORD_HEADER, length, data.get());

    context.header = &header;
    context.payload = octets_of({data.get(), length});
    context.original_length = static_cast<std::uint16_t>(length + load_be16(&input[8]));
    return {.data = std::move(data), .rest = input.subspan(RECORD_HEADER + length)};
}

void require(bool holds, const char* what) {
    if (!holds) {
        static_cast<void>(std::fprintf(stderr, "does not hold: %s\n", what));
        std::abort();
    }
}

std::int64_t thread_time_ns() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void check_state(const display_context& context) {
    for (const async_state& state : context.async) {
        check_async(state);
    }
    for (const pptp_state& state : context.pptp) {
        check_pptp(state);
    }
    require(context.lapb_mod128 == 0 || context.lapb_mod128 == 1, "lapb: modulo 8 or 128");
    require(context.fax_recv_mode < FAX_MODES && context.fax_xmit_mode < FAX_MODES, "fax: a mode that is known");
    require(context.nesting == 0, "every tunnel that was entered has been left");
}

void show_checked(display_context& context) {
    const std::size_t maximum = output_maximum(context);
    const std::uint32_t mode_flags = context.mode_flags;
    const std::int32_t tei_filter = context.tei_filter;
    const std::int32_t cref_filter = context.cref_filter;
    const std::int32_t channel_type = context.channel_type;
    set_output_writer(count_output);
    printed = 0;
    const std::int64_t start = thread_time_ns();
    display_record(context);
    flush_output();
    require(thread_time_ns() - start <= RECORD_TIME_MAXIMUM_NS, "a record takes at most 50 ms");
    require(printed <= maximum, "a record prints in proportion to what is held");
    check_state(context);
    require(context.expected_sequence == context.header->sequence, "the sequence number is that of the record");
    require(context.mode_flags == mode_flags && context.tei_filter == tei_filter &&
                context.cref_filter == cref_filter && context.channel_type == channel_type,
            "a record changes nothing that the command line chose");
}

}  // namespace ifwatch::fuzz
