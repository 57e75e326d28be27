#include "qorv_skia.h"

extern "C" int32_t qorv_atomic_inc(int32_t *counter) {
    return __atomic_add_fetch(counter, 1, __ATOMIC_ACQ_REL);
}

extern "C" int32_t qorv_atomic_dec(int32_t *counter) {
    return __atomic_sub_fetch(counter, 1, __ATOMIC_ACQ_REL);
}
