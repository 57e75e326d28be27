// Marks around the calls that bench/count_plugin.c counts: instructions that do nothing and that no compiler makes.
#pragma once

namespace marks {

#if defined(__aarch64__)
#define QORV_MARK(number) asm volatile("movz xzr, #0xBE0" #number ::: "memory")
#elif defined(__x86_64__)
#define QORV_MARK(number) asm volatile("nopl 0xBE0000" #number "(%%rax)" ::: "memory")
#endif

[[gnu::always_inline]] inline void begin() {
    QORV_MARK(1);
}
// Every instruction is written down, too.
[[gnu::always_inline]] inline void begin_trace() {
    QORV_MARK(2);
}
[[gnu::always_inline]] inline void end() {
    QORV_MARK(0);
}
#undef QORV_MARK

// Runs `call` once so that what it sets up at the first call is there, then counted.
template <class Call>
[[gnu::noinline]] void counted(const Call &call) {
    call();
    begin();
    call();
    end();
}

}  // namespace marks
