// Marks around the calls that bench/count_plugin.c counts: instructions that do nothing and that no compiler makes.
#pragma once

namespace marks {

#if defined(__aarch64__)
#define QORV_MARK(number) asm volatile("movz xzr, #0xBE0" #number ::: "memory")
#elif defined(__x86_64__)
#define QORV_MARK(number) asm volatile("nopl 0xBE0000" #number "(%%rax)" ::: "memory")
#endif

// Runs `call` once so that what it sets up at the first call is there, then counted.
template <class Call>
[[gnu::noinline]] void counted(const Call &call) {
    call();
    QORV_MARK(1);
    call();
    QORV_MARK(0);
}

// The same, every instruction written down.
template <class Call>
[[gnu::noinline]] void traced(const Call &call) {
    call();
    QORV_MARK(2);
    call();
    QORV_MARK(0);
}
#undef QORV_MARK

}  // namespace marks
