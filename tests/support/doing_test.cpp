// What the suite says of a test that dies.
#include "support/doing.h"

#include <gtest/gtest.h>

#include <csignal>

namespace test {
namespace {

TEST(CrashDeathTest, NamesTheTestItsWorkAndTheSeed) {
    const auto die = [](int signal) {
        const Doing member("member %s", "sad"), size("%dx%d", 4, 8);
        raise(signal);
    };
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGALRM}) {
        EXPECT_DEATH(die(signal), "CrashDeathTest.NamesTheTestItsWorkAndTheSeed\n  member sad\n  4x8\nQORV_TEST_SEED=");
    }
    EXPECT_EQ(doing(), nullptr);
}

}  // namespace
}  // namespace test
