#pragma once

#include <optional>
#include <string>
#include <vector>

#include "capture/packet_record.h"
#include "client/decoder_options.h"

namespace ifwatch::read {

/// When the output is coloured. AUTO: on a terminal.
enum class color_choice : std::uint8_t { AUTO, ALWAYS, NEVER };

struct read_options {
    decoder_options decoders;
    std::optional<int> channel_type = {};  // --type: of interfaces whose capture does not tell it
    capture::sent_rule sent = {};          // --sent
    color_choice color = color_choice::AUTO;
    std::vector<std::string> files = {};  // "-": the standard input
    bool help = false;
};

/// Reads a command line into the options and verbose_level. Options may stand behind file names. False with what is
/// wrong, in one line, in `error`; options of ifwatch that need its router are named with the reason.
bool parse_options(int argc, char** argv, read_options& options, std::string& error);

/// What --help prints.
[[nodiscard]] const char* help_text();

}  // namespace ifwatch::read
