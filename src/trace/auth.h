#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace ifwatch {

inline constexpr int AUTH_LENGTH = 9;  // a version octet and 8 octets of random data or digest

/// The first 8 octets of the login digest: MD5 (RFC 1321) over the password, the whole challenge, the password again
/// and the user name "admin". False when the library has no MD5.
bool auth_digest(std::string_view password, std::span<const std::uint8_t> challenge,
                 std::array<std::uint8_t, 8>& digest);

/// Builds the AUTH reply to a challenge: its version octet and the digest. The password is `given_password` (--pwd;
/// nullptr: none), else TRACE_PWD, else asked for; a typed one is wiped from memory afterwards. The digest covers the
/// octets of the challenge that arrived, however many; what is missing of 9 reads 0 in the version octet and in
/// messages. Returns 0, or -1 when the digest cannot be made.
int calc_auth(const char* given_password, std::span<const std::uint8_t> challenge,
              std::span<std::uint8_t, AUTH_LENGTH> reply);

/// Overwrites a password that came in TRACE_PWD and takes the variable out of the environment, also of programs started
/// later.
void wipe_password_variable();

/// Writes the prompt to the error stream and reads one line of the standard input into `password`: at most 31
/// characters, without its line end; the rest of a longer line is read away. Empty at the end of input.
void prompt_password(std::string_view prompt, std::span<char, 32> password);

}  // namespace ifwatch
