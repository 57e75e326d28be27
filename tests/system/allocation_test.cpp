// Aligned allocation, atomic counts and the version text.
#include "support/allocation.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "qorv_skia.h"

namespace {

struct Pair {
    void *(*alloc)(int32_t);
    void (*free)(void *);
};

class AlignedAllocation : public testing::TestWithParam<Pair> {};

TEST_P(AlignedAllocation, GivesWritableBlocksOnA32ByteBoundary) {
    const long before = test::live_allocations();
    for (int32_t size : {0, 1, 31, 32, 33, 4096, 1 << 20}) {
        void *block = GetParam().alloc(size);
        ASSERT_NE(block, nullptr) << size;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        uintptr_t raw;
        memcpy(&raw, static_cast<char *>(block) - 8, 8);
        const uintptr_t distance = reinterpret_cast<uintptr_t>(block) - raw;
        EXPECT_TRUE(distance >= 8 && distance <= 39) << distance;
        memset(block, 0x5A, static_cast<size_t>(size));
        EXPECT_EQ(test::live_allocations(), before + 1);
        GetParam().free(block);
        EXPECT_EQ(test::live_allocations(), before);
    }
    GetParam().free(nullptr);
}

TEST_P(AlignedAllocation, GivesNullBelowItsOwnOverhead) {
    for (int32_t size : {-1, -8}) {
        void *block = GetParam().alloc(size);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u) << size;
        ASSERT_NE(block, nullptr) << size;
        GetParam().free(block);
    }
    for (int32_t size : {-41, INT32_MIN}) EXPECT_EQ(GetParam().alloc(size), nullptr) << size;
}

INSTANTIATE_TEST_SUITE_P(Both, AlignedAllocation,
                         testing::Values(Pair{qorv_malloc_align32, qorv_mfree_align32},
                                         Pair{qorv_malloc_fast_align32, qorv_mfree_fast_align32}));

TEST(AtomicCount, ReturnsTheNewValueAndWraps) {
    int32_t count = 0;
    EXPECT_EQ(qorv_atomic_inc(&count), 1);
    EXPECT_EQ(qorv_atomic_dec(&count), 0);
    EXPECT_EQ(qorv_atomic_dec(&count), -1);
    count = INT32_MAX;
    EXPECT_EQ(qorv_atomic_inc(&count), INT32_MIN);
    EXPECT_EQ(qorv_atomic_dec(&count), INT32_MAX);
}

TEST(AtomicCount, LosesNothingBetweenThreads) {
    constexpr int kThreads = 8, kRounds = 20000;
    int32_t count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; t++) {
        threads.emplace_back([&count, t] {
            for (int i = 0; i < kRounds; i++) {
                qorv_atomic_inc(&count);
                if (t % 2 == 0) qorv_atomic_dec(&count);
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(count, kThreads / 2 * kRounds);
}

TEST(Version, IsA64ByteAreaOfZeros) {
    const char *version = qorv_version();
    EXPECT_EQ(std::string(version, 64), std::string(64, '\0'));
    EXPECT_EQ(qorv_version(), version);
}

}  // namespace
