// Waiting for a 32-bit word to take a value. On AArch64 the processor does it: the exclusive load leaves the address
// watched, so that a later store by another core raises the event that ends the wait. Elsewhere a waiter spins for a
// moment and then sleeps in the kernel, a few milliseconds at a time.
#include "qorv_skia.h"

#if !defined(__aarch64__)
#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {

constexpr int32_t kAbandoned = -1;

constexpr bool is_over(int32_t seen, int32_t value) {
    return seen == kAbandoned || seen == value;
}

#if defined(__aarch64__)

int32_t load_watched(const int32_t *word) {
    int32_t seen;
    asm volatile("ldaxr %w0, %1" : "=r"(seen) : "Q"(*word) : "memory");
    return seen;
}

int32_t wait_until_over(const int32_t *word, int32_t value) {
    asm volatile("sevl" ::: "memory");  // so that the first wait below returns at once
    int32_t seen;
    do {
        asm volatile("wfe" ::: "memory");
        seen = load_watched(word);
    } while (!is_over(seen, value));
    return seen;
}

void publish(int32_t *word, int32_t value) {
    uint32_t failed = 0;
    do {
        if (load_watched(word) == value) break;
        asm volatile("stlxr %w0, %w2, %1" : "=&r"(failed), "+Q"(*word) : "r"(value) : "memory");
    } while (failed != 0);
    asm volatile("sev" ::: "memory");
}

#else

// A waiter looks again after each pause, and yields the core now and then in case the waker is to run on it. All of it
// takes 5 to 20 microseconds: less than it costs to be woken on another core.
constexpr int kYields = 20;
constexpr int kPausesPerYield = 10;

// Waiters that are asleep or about to be. While it is 0 a wake costs no system call. It hastens wakes and decides none:
// waiters of another copy of the library or of another process are not counted here, nor does a plain store look.
int32_t sleepers = 0;

// The longest that a waiter sleeps before it looks again: seconds and nanoseconds, in words of the kernel's size. A
// whole wait at this rate takes about a seven-hundredth of a core.
constexpr long kLongestSleep[2] = {0, 5'000'000};

// Not private to the process: the word may lie in shared memory.
void futex(const int32_t *word, int operation, int32_t value, const long *limit) {
    const int saved = errno;
    syscall(SYS_futex, word, operation, value, limit);
    errno = saved;
}

void pause_spinning() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

// Sleeps unless the word differs from `seen` by now; returns at a wake, after a while, and now and then at once.
void sleep_on(const int32_t *word, int32_t seen) {
    // Counted before the kernel looks at the word: a waker that is not seen there sees the count.
    __atomic_add_fetch(&sleepers, 1, __ATOMIC_SEQ_CST);
    futex(word, FUTEX_WAIT, seen, kLongestSleep);
    __atomic_sub_fetch(&sleepers, 1, __ATOMIC_RELAXED);
}

int32_t load(const int32_t *word) {
    return __atomic_load_n(word, __ATOMIC_ACQUIRE);
}

int32_t spin(const int32_t *word, int32_t value) {
    for (int round = 0; round < kYields; round++) {
        for (int i = 0; i < kPausesPerYield; i++) {
            const int32_t seen = load(word);
            if (is_over(seen, value)) return seen;
            pause_spinning();
        }
        sched_yield();
    }
    return load(word);
}

int32_t wait_until_over(const int32_t *word, int32_t value) {
    int32_t seen = spin(word, value);
    while (!is_over(seen, value)) {
        sleep_on(word, seen);
        seen = load(word);
    }
    return seen;
}

void publish(int32_t *word, int32_t value) {
    // The word may be read-only when the value is there already.
    if (load(word) != value) __atomic_store_n(word, value, __ATOMIC_SEQ_CST);
    if (__atomic_load_n(&sleepers, __ATOMIC_SEQ_CST) != 0) futex(word, FUTEX_WAKE, INT_MAX, nullptr);
}

#endif

}  // namespace

extern "C" int32_t qorv_sync_wait(const int32_t *word, int32_t value) {
    return wait_until_over(word, value) == kAbandoned ? -1 : 0;
}

extern "C" int32_t qorv_sync_wake(int32_t *word, int32_t value) {
    publish(word, value);
    return 0;
}
