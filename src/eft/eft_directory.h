#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the listing of a directory below its title: the octets as characters, CR LF ending a line. A line is started
/// only where octets follow: an empty listing prints only the title. Returns the octets consumed: all that are held
/// (ETS 300 075).
int dump_eft_directory(octets listing);

}  // namespace ifwatch
