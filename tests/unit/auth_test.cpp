#include "trace/auth.h"

#include <gtest/gtest.h>

#include <vector>

namespace ifwatch {
namespace {

constexpr std::array<std::uint8_t, AUTH_LENGTH> CHALLENGE{1, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};

TEST(auth_digest, known_answer) {
    // printf 'secret\x01\x11\x22\x33\x44\x55\x66\x77\x88secretadmin' | md5sum
    std::array<std::uint8_t, 8> digest{};
    ASSERT_TRUE(auth_digest("secret", CHALLENGE, digest));
    EXPECT_EQ(digest, (std::array<std::uint8_t, 8>{0xED, 0xB2, 0xA4, 0xC4, 0xE1, 0x65, 0x86, 0x19}));
}

TEST(auth_digest, empty_password_and_a_challenge_of_zeros) {
    // printf '\0\0\0\0\0\0\0\0\0admin' | md5sum
    std::array<std::uint8_t, 8> digest{};
    ASSERT_TRUE(auth_digest("", std::array<std::uint8_t, AUTH_LENGTH>{}, digest));
    EXPECT_EQ(digest, (std::array<std::uint8_t, 8>{0x8F, 0x86, 0x66, 0x47, 0x86, 0xA1, 0xC5, 0xF7}));
}

TEST(calc_auth, echoes_the_version_before_the_digest) {
    std::array<std::uint8_t, AUTH_LENGTH> reply{};
    EXPECT_EQ(calc_auth("secret", CHALLENGE, reply), 0);
    EXPECT_EQ(reply, (std::array<std::uint8_t, AUTH_LENGTH>{1, 0xED, 0xB2, 0xA4, 0xC4, 0xE1, 0x65, 0x86, 0x19}));
}

TEST(calc_auth, hashes_every_octet_of_a_longer_challenge) {
    std::vector<std::uint8_t> longer(CHALLENGE.begin(), CHALLENGE.end());
    longer.push_back(0x99);
    std::array<std::uint8_t, 8> digest{};
    ASSERT_TRUE(auth_digest("secret", longer, digest));
    std::array<std::uint8_t, AUTH_LENGTH> reply{};
    EXPECT_EQ(calc_auth("secret", longer, reply), 0);
    EXPECT_TRUE(std::equal(digest.begin(), digest.end(), reply.begin() + 1));
    EXPECT_NE(reply[1], 0xED);
}

}  // namespace
}  // namespace ifwatch
