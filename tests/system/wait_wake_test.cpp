#include <errno.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

// A lost wake-up would hang the test; the alarm ends the program instead.
class WaitWake : public testing::Test {
protected:
    void SetUp() override { alarm(120); }
    void TearDown() override { alarm(0); }
};

void pause_for(uint32_t microseconds) {
    if (microseconds != 0) std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

TEST_F(WaitWake, ReturnsAtOnceWhenTheWordHoldsTheValueOrMinusOne) {
    int32_t word = 5;
    EXPECT_EQ(qorv_sync_wait(&word, 5), 0);
    EXPECT_EQ(qorv_sync_wake(&word, 7), 0);
    EXPECT_EQ(word, 7);
    EXPECT_EQ(qorv_sync_wait(&word, 7), 0);
    EXPECT_EQ(qorv_sync_wake(&word, -1), 0);
    EXPECT_EQ(qorv_sync_wait(&word, 7), -1);
    EXPECT_EQ(qorv_sync_wait(&word, -1), -1);
}

// Two threads hand a counter to and fro, with pauses that make either side wait for nothing, a spin or a sleep.
TEST_F(WaitWake, LosesNoWakeUpAndPublishesWhatWasWrittenBefore) {
    constexpr int32_t kRounds = 4000;
    int32_t word = 0;
    int32_t payload = 0;  // plain: ordered by the word
    const auto side = [&](int32_t parity, uint64_t stream) {
        test::Random random(stream);
        for (int32_t turn = parity; turn < kRounds; turn += 2) {
            ASSERT_EQ(qorv_sync_wait(&word, turn), 0);
            ASSERT_EQ(payload, turn);
            payload = turn + 1;
            pause_for(random.below(16) == 0 ? random.below(300) : 0);
            qorv_sync_wake(&word, turn + 1);
        }
    };
    std::thread other(side, 1, 1);
    side(0, 2);
    other.join();
    EXPECT_EQ(word, kRounds);
}

TEST_F(WaitWake, WakesEveryWaiterWithItsOwnAnswer) {
    for (uint32_t pause : {0u, 50u, 5000u}) {
        int32_t word = 0;
        std::vector<int32_t> results(8, 99);
        std::vector<std::thread> waiters;
        for (size_t i = 0; i < results.size(); i++) {
            waiters.emplace_back([&, i] { results[i] = qorv_sync_wait(&word, i < 4 ? 1 : 2); });
        }
        pause_for(pause);
        qorv_sync_wake(&word, 1);
        for (size_t i = 0; i < 4; i++) waiters[i].join();
        pause_for(pause);
        qorv_sync_wake(&word, -1);
        for (size_t i = 4; i < 8; i++) waiters[i].join();
        EXPECT_EQ(results, (std::vector<int32_t>{0, 0, 0, 0, -1, -1, -1, -1}));
    }
}

// Whoever changes the word, and however: a waiter that sleeps for longer than any wait of the processor's own ends.
TEST_F(WaitWake, EndsAfterAPlainStoreAndLeavesErrnoAlone) {
    int32_t word = 0;
    int seen = 0;
    std::thread waiter([&] {
        errno = EDOM;
        qorv_sync_wait(&word, 1);
        seen = errno;
    });
    pause_for(20000);
    __atomic_store_n(&word, 1, __ATOMIC_RELEASE);
    waiter.join();
    EXPECT_EQ(seen, EDOM);
}

TEST_F(WaitWake, ReachesAnotherProcessThroughSharedMemory) {
    void *shared = mmap(nullptr, sizeof(int32_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    int32_t *word = static_cast<int32_t *>(shared);
    const pid_t child = fork();
    if (child == 0) {
        alarm(120);
        _exit(qorv_sync_wait(word, 3) == 0 ? 0 : 1);
    }
    pause_for(20000);
    qorv_sync_wake(word, 3);
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    munmap(shared, sizeof(int32_t));
}

TEST_F(WaitWake, StoresNothingWhenTheValueIsThere) {
    test::GuardedBuffer page(sizeof(int32_t));
    *page.as<int32_t>() = 6;
    page.make_read_only();
    EXPECT_EQ(qorv_sync_wake(page.as<int32_t>(), 6), 0);
}

#if !defined(__aarch64__)  // there the processor sleeps, which no clock of the system shows
TEST_F(WaitWake, LeavesTheCoreFreeDuringALongWait) {
    int32_t word = 0;
    double busy = 1;
    std::thread waiter([&] {
        qorv_sync_wait(&word, 1);
        timespec used;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        busy = static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
    });
    pause_for(300000);
    qorv_sync_wake(&word, 1);
    waiter.join();
    EXPECT_LT(busy, 0.05);
}
#endif

}  // namespace
