#pragma once

#include <cstdint>

namespace ifwatch {

/// What the decoders are asked to show.
struct decoder_options {
    std::uint32_t mode_flags = 0;
    std::int32_t tei_filter = -1;   // -T; -1: none
    std::int32_t cref_filter = -1;  // -c; -1: none
};

/// The letters of the decoder options, as getopt takes them.
inline constexpr char DECODER_LETTERS[] = "!23FADehapfiNtvxXT:c:";

/// Applies one decoder option, `key` being its letter; -v counts verbose_level up. False for any other option.
bool take_decoder_option(int key, const char* argument, decoder_options& settings);

/// Mode bits that follow from others, once all options are read.
void complete_mode_flags(std::uint32_t& flags);

/// The number of an option: the decimal digits at the start of its text, as atoi converts; of a number that does not
/// fit the low 32 bits, 0 without any digits.
[[nodiscard]] std::int32_t option_number(const char* text);

}  // namespace ifwatch
