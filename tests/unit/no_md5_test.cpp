// A system whose library gives no MD5, as one that keeps to approved digests does.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <array>
#include <cstdint>

#include "trace/auth.h"

namespace ifwatch {
namespace {

bool has_md5 = true;

}  // namespace
}  // namespace ifwatch

// It stands before that of the library, which it calls.
extern "C" const EVP_MD* EVP_md5() {  // NOLINT(*-identifier-naming)
    using function = const EVP_MD* (*)();
    static const auto REAL = reinterpret_cast<function>(dlsym(RTLD_NEXT, "EVP_md5"));
    return ifwatch::has_md5 ? REAL() : nullptr;
}

namespace ifwatch {
namespace {

TEST(no_md5, there_is_no_reply_to_a_challenge) {
    constexpr std::array<std::uint8_t, AUTH_LENGTH> CHALLENGE{1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    std::array<std::uint8_t, AUTH_LENGTH> reply{};
    EXPECT_EQ(calc_auth("secret", CHALLENGE, reply), 0);
    reply.fill(0);
    has_md5 = false;
    EXPECT_EQ(calc_auth("secret", CHALLENGE, reply), -1);
    has_md5 = true;
    EXPECT_EQ(reply, (std::array<std::uint8_t, AUTH_LENGTH>{}));
}

}  // namespace
}  // namespace ifwatch
