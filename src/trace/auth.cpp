#include "trace/auth.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/byte_order.h"
#include "base/print.h"
#include "base/verbose.h"

namespace ifwatch {

namespace {

constexpr std::string_view USER_NAME = "admin";
constexpr const char* PASSWORD_VARIABLE = "TRACE_PWD";

/// Keeps the library from reading its configuration and from listing every algorithm it has: half of what a login with
/// nothing but MD5 would take.
void set_up_library() {
    OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG | OPENSSL_INIT_NO_ADD_ALL_CIPHERS | OPENSSL_INIT_NO_ADD_ALL_DIGESTS,
                        nullptr);
}

bool add(EVP_MD_CTX* md5, const void* data, std::size_t length) { return EVP_DigestUpdate(md5, data, length) == 1; }

/// One octet of the standard input, waited for also where that does not block; -1 at its end.
int read_character() {
    unsigned char octet = 0;
    while (true) {
        const ssize_t count = read(STDIN_FILENO, &octet, 1);
        if (count >= 0) {
            return count == 1 ? octet : -1;
        }
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const bool again = errno == EINTR || (errno == EAGAIN && (poll(&input, 1, -1) >= 0 || errno == EINTR));
        if (!again) {
            return -1;
        }
    }
}

/// The password of the run: given, from the environment, or asked for (then kept in `typed`).
const char* find_password(const char* given_password, std::span<char, 32> typed) {
    if (given_password != nullptr) {
        return given_password;
    }
    if (const char* const value = std::getenv(PASSWORD_VARIABLE)) {
        if (verbose_level >= 0) {
            report<"using environ $%s as password\n">(PASSWORD_VARIABLE);
        }
        return value;
    }
    prompt_password("Enter remote password: ", typed);
    return typed.data();
}

}  // namespace

bool auth_digest(std::string_view password, std::span<const std::uint8_t> challenge,
                 std::array<std::uint8_t, 8>& digest) {
    set_up_library();
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> md5(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> whole{};
    if (md5 == nullptr || EVP_DigestInit_ex(md5.get(), EVP_md5(), nullptr) != 1 ||
        !add(md5.get(), password.data(), password.size()) || !add(md5.get(), challenge.data(), challenge.size()) ||
        !add(md5.get(), password.data(), password.size()) || !add(md5.get(), USER_NAME.data(), USER_NAME.size()) ||
        EVP_DigestFinal_ex(md5.get(), whole.data(), nullptr) != 1) {
        return false;
    }
    std::copy_n(whole.begin(), digest.size(), digest.begin());
    return true;
}

int calc_auth(const char* given_password, std::span<const std::uint8_t> challenge,
              std::span<std::uint8_t, AUTH_LENGTH> reply) {
    std::array<char, 32> typed{};
    const std::string_view password = find_password(given_password, typed);
    std::array<std::uint8_t, AUTH_LENGTH> shown{};
    std::copy_n(challenge.begin(), std::min(challenge.size(), shown.size()), shown.begin());
    if (verbose_level > 1) {
        report<"got AUTH random (V.%d): 0x%08x%08x\n">(shown[0], load_le32(&shown[1]), load_le32(&shown[5]));
    }
    std::array<std::uint8_t, 8> digest{};
    const bool done = auth_digest(password, challenge, digest);
    OPENSSL_cleanse(typed.data(), typed.size());
    if (!done) {
        return -1;
    }
    reply[0] = shown[0];
    std::copy(digest.begin(), digest.end(), reply.begin() + 1);
    if (verbose_level > 2) {
        report<"calced auth: 0x%08x%08x\n">(load_le32(digest.data()), load_le32(&digest[4]));
    }
    return 0;
}

void wipe_password_variable() {
    if (char* const value = std::getenv(PASSWORD_VARIABLE); value != nullptr) {
        OPENSSL_cleanse(value, std::strlen(value));
        unsetenv(PASSWORD_VARIABLE);
    }
}

void prompt_password(std::string_view prompt, std::span<char, 32> password) {
    write_report(prompt);
    std::size_t length = 0;
    for (int character = read_character(); character >= 0 && character != '\n'; character = read_character()) {
        if (length < password.size() - 1) {
            password[length++] = static_cast<char>(character);
        }
    }
    while (length > 0 && password[length - 1] == '\r') {
        --length;
    }
    password[length] = '\0';
    if (verbose_level >= 3) {
        print<"pwd:%s. (%d)\n">(password.data(), static_cast<int>(length));
        flush_output();
    }
}

}  // namespace ifwatch
