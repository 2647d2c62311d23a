#include "client/run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ifwatch {
namespace {

TEST(run, without_even_a_name_it_has_its_own) {
    char* none[] = {nullptr};
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(0, none), 1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::HasSubstr("Usage:\n  ifwatch [opts] <routerip> [<channel> <unit> <slot> or <ifindex>]\n"));
}

}  // namespace
}  // namespace ifwatch
