#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the listing of a directory below its title: the octets as characters, each CR LF starting a new line. An
/// empty listing prints only the title. Returns the octets consumed: all that are held (ETS 300 075).
int dump_eft_directory(octets listing);

}  // namespace ifwatch
