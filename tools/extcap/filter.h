#pragma once

#include <string>
#include <string_view>

#include "trace/addinfo.h"

namespace ifwatch::extcap {

/// Takes a capture filter into the add-info elements of a session, and checks it first. It is written as on ifwatch's
/// command line, without a shell: the words -I TEXT, -B TEXT, --src=ADDR, --dst=ADDR, --llc, and -o between two of
/// them. Blanks separate words; a backslash before "!" is left out. Names of hosts are not looked up: the router does
/// that. No words are no filter. On a mistake false, with a one-line `error`.
bool add_capture_filter(std::string_view text, addinfo_buffer& addinfo, std::string& error);

}  // namespace ifwatch::extcap
