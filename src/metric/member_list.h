// The members of the block metrics. One list for each family is the source of its kernel table, its exported functions,
// its tests and its benchmarks.
//
// Fixed sizes: X(width, height, suffix, A, B), A and B being the sample types of the two blocks. Any size: X(name, T).
// SADs and differences may be listed in any size; transforms have a body for 4x4 and one for 8x8 (satd.h), no other.
#pragma once

#define QORV_TINY_SIZES(X, suffix, A, B) \
    X(2, 2, suffix, A, B) X(2, 4, suffix, A, B) X(4, 2, suffix, A, B) X(4, 4, suffix, A, B)

#define QORV_INTER_SIZES(X, suffix, A, B) \
    X(4, 8, suffix, A, B)                 \
    X(8, 4, suffix, A, B)                 \
    X(8, 8, suffix, A, B)                 \
    X(8, 16, suffix, A, B)                \
    X(16, 8, suffix, A, B)                \
    X(16, 16, suffix, A, B)               \
    X(16, 32, suffix, A, B)               \
    X(32, 16, suffix, A, B)               \
    X(32, 32, suffix, A, B) X(32, 64, suffix, A, B) X(64, 32, suffix, A, B) X(64, 64, suffix, A, B)

#define QORV_SAD_BLOCKS(X)                     \
    QORV_TINY_SIZES(X, , uint8_t, uint8_t)     \
    QORV_TINY_SIZES(X, _16, int16_t, int16_t)  \
    QORV_INTER_SIZES(X, , uint8_t, uint8_t)    \
    QORV_INTER_SIZES(X, _16, int16_t, int16_t) \
    QORV_INTER_SIZES(X, _bi, int16_t, uint8_t) \
    QORV_INTER_SIZES(X, _bi_16, int16_t, int16_t)

#define QORV_DIFF_BLOCKS(X)                    \
    QORV_TINY_SIZES(X, , uint8_t, uint8_t)     \
    QORV_TINY_SIZES(X, _16, int16_t, int16_t)  \
    QORV_INTER_SIZES(X, , uint8_t, uint8_t)    \
    QORV_INTER_SIZES(X, _16, int16_t, int16_t) \
    X(2, 8, _16, int16_t, int16_t)             \
    X(4, 16, _16, int16_t, int16_t)            \
    X(8, 32, _16, int16_t, int16_t)            \
    X(16, 64, _16, int16_t, int16_t)           \
    X(4, 4, _bi, int16_t, uint8_t)             \
    X(4, 4, _bi_16, int16_t, int16_t)

// The 4x4 residual wraps to 16 bits, so that its sample types hardly matter; that of 8x8 does not, so that they do.
#define QORV_SATD_BLOCKS(X)           \
    X(4, 4, , uint8_t, uint8_t)       \
    X(4, 4, _16, int16_t, int16_t)    \
    X(4, 4, _bi, int16_t, uint8_t)    \
    X(4, 4, _bi_16, int16_t, int16_t) \
    X(8, 8, , uint8_t, uint8_t)       \
    X(8, 8, _16, uint16_t, uint16_t)  \
    X(8, 8, _bi, int16_t, uint8_t)    \
    X(8, 8, _bi_16, int16_t, uint16_t)

#define QORV_AREA_COSTS(X) \
    X(sad, uint8_t) X(sad_16, int16_t) X(ssd, uint8_t) X(ssd_16, int16_t) X(satd, uint8_t) X(satd_16, int16_t)

#define QORV_AREA_DIFFS(X) X(diff, uint8_t) X(diff_16, int16_t)
