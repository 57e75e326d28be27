#include "support/doing.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "support/random.h"

namespace test {

namespace {

thread_local const Doing *innermost = nullptr;

constexpr std::array kSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGALRM};
constexpr unsigned kLongestTest = 20 * 60;  // seconds; a test that hangs says so

std::array<struct sigaction, kSignals.size()> earlier;  // a sanitizer's own handlers
char running[256] = "no test";
char seed_line[64];

// Handlers call nothing that may hold a lock.
void print(const char *text) {
    if (write(STDERR_FILENO, text, strlen(text)) < 0) return;
}

void print_doing(const Doing *from) {
    if (from == nullptr) return;
    print_doing(from->outer());
    print("  ");
    print(from->line());
    print("\n");
}

// Afterwards the signal does what it would have done: on return a faulting instruction faults again; a signal that was
// sent has to be sent again.
void crashed(int signal, siginfo_t *info, void *) {
    print("\nSignal ");
    print(sigabbrev_np(signal));
    print(" in ");
    print(running);
    print("\n");
    print_doing(innermost);
    print(seed_line);
    for (size_t i = 0; i < kSignals.size(); i++) {
        if (kSignals[i] == signal) sigaction(signal, &earlier[i], nullptr);
    }
    if (info->si_code <= 0 || signal == SIGALRM) raise(signal);
}

class Reporter : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &info) override {
        snprintf(running, sizeof running, "%s.%s", info.test_suite_name(), info.name());
        restart_random_numbers(running);
        alarm(kLongestTest);
    }
    void OnTestPartResult(const ::testing::TestPartResult &result) override {
        if (!result.passed()) print_doing(innermost);
    }
    void OnTestEnd(const ::testing::TestInfo &) override {
        alarm(0);
        strcpy(running, "no test");
    }
};

}  // namespace

Doing::Doing(const char *format, ...) : outer_(innermost) {
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line_, sizeof line_, format, arguments);
    va_end(arguments);
    innermost = this;
}

Doing::~Doing() {
    innermost = outer_;
}

const Doing *doing() {
    return innermost;
}

void report_crashes_and_seeds() {
    snprintf(seed_line, sizeof seed_line, "QORV_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed()));
    print(seed_line);
    // A stack of its own: the test's may be what has overflowed.
    static std::array<char, 64 * 1024> stack;
    const stack_t alternative{.ss_sp = stack.data(), .ss_flags = 0, .ss_size = stack.size()};
    sigaltstack(&alternative, nullptr);
    struct sigaction action = {};
    action.sa_sigaction = crashed;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO;
    for (size_t i = 0; i < kSignals.size(); i++) sigaction(kSignals[i], &action, &earlier[i]);
    ::testing::UnitTest::GetInstance()->listeners().Append(new Reporter);
}

}  // namespace test
