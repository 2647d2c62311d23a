#include "trace/auth.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/verbose.h"

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

TEST(calc_auth, hashes_no_octet_that_did_not_arrive) {
    const std::array<std::uint8_t, 3> shorter{2, 0x11, 0x22};
    std::array<std::uint8_t, AUTH_LENGTH> reply{};
    verbose_level = 2;
    testing::internal::CaptureStderr();
    EXPECT_EQ(calc_auth("secret", shorter, reply), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "got AUTH random (V.2): 0x0000221100000000\n");
    verbose_level = 0;
    // printf 'secret\x02\x11\x22secretadmin' | md5sum
    EXPECT_EQ(reply, (std::array<std::uint8_t, AUTH_LENGTH>{2, 0x33, 0x46, 0x59, 0x7C, 0xDE, 0xDE, 0x2A, 0x33}));
    EXPECT_EQ(calc_auth("secret", {}, reply), 0);
    // printf 'secretsecretadmin' | md5sum
    EXPECT_EQ(reply, (std::array<std::uint8_t, AUTH_LENGTH>{0, 0xB4, 0xB3, 0x27, 0xC0, 0x6D, 0x96, 0x2A, 0xDC}));
}

}  // namespace
}  // namespace ifwatch
