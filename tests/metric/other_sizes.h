// Blocks of sizes that no list of members holds, in every kernel set: what a new line of a list would give.
#pragma once

#include "metric/metric_kernels.h"

// Widths and heights that are no power of two, and more columns or rows than one strip has.
#define QORV_OTHER_SIZES(X, suffix, A, B) \
    X(12, 16, suffix, A, B)               \
    X(24, 32, suffix, A, B)               \
    X(48, 64, suffix, A, B)               \
    X(48, 32, suffix, A, B)               \
    X(4, 6, suffix, A, B) X(16, 24, suffix, A, B) X(32, 65, suffix, A, B) X(128, 8, suffix, A, B)

#define QORV_OTHER_BLOCKS(X)                   \
    QORV_OTHER_SIZES(X, , uint8_t, uint8_t)    \
    QORV_OTHER_SIZES(X, _16, int16_t, int16_t) \
    QORV_OTHER_SIZES(X, _bi, int16_t, uint8_t)

namespace test {

struct OtherSizes {
#define QORV_BLOCK(w, h, suffix, A, B)           \
    qorv::BlockCost<A, B> *sad##w##x##h##suffix; \
    qorv::BlockDiff<A, B> *diff##w##x##h##suffix;
    QORV_OTHER_BLOCKS(QORV_BLOCK)
#undef QORV_BLOCK
};

}  // namespace test
