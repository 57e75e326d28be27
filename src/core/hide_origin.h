// For the few places where a compiler that sees through a value does worse.
#pragma once

namespace qorv {

// Makes the compiler forget how the value came about: it neither folds it into what follows nor reorders the two. Costs
// no instruction. Of internal linkage, so that kernel sets share no copy.
template <class T>
[[gnu::always_inline]] static inline void hide_origin(T &value) {
    if constexpr (sizeof(T) <= sizeof(void *)) {
        asm("" : "+r"(value));
    } else {
#if defined(__x86_64__)
        asm("" : "+x"(value));
#else
        asm("" : "+w"(value));
#endif
    }
}

}  // namespace qorv
