#pragma once

#include <string>

#include "client/secret.h"

namespace ifwatch::extcap {

/// Reads the password of a router from a credentials file: a line for each router with its name, blanks and the
/// password, which goes to the end of the line; "*" stands for every router, "#" begins a comment line, and the first
/// line that fits counts. The file has to be its owner's alone. True with nothing taken when no line fits; on a
/// mistake false, with a one-line `error` that names file and line.
bool read_credentials(const std::string& path, const std::string& router, secret& password, std::string& error);

/// The password for a router: of the credentials file, where one is named and knows it, else TRACE_PWD, which is wiped
/// from the environment. False, with a one-line `error`, when there is none.
bool find_password(const std::string& credentials, const std::string& router, secret& password, std::string& error);

}  // namespace ifwatch::extcap
