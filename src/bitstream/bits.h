// What the bit reader and the bit writer share.
#pragma once

#include <stdint.h>
#include <string.h>

namespace qorv {

constexpr int32_t kWordBytes = 4;  // of the cache

// Shifts of a 32-bit word with the count taken modulo 32.
constexpr uint32_t shift_left(uint32_t word, int32_t count) {
    return word << (count & 31);
}

constexpr uint32_t shift_right(uint32_t word, int32_t count) {
    return word >> (count & 31);
}

// 32 for 0.
constexpr int32_t leading_zeros(uint32_t word) {
    return word != 0 ? __builtin_clz(word) : 32;
}

// 0 for 0.
constexpr int32_t floor_log2(uint32_t word) {
    return 31 - __builtin_clz(word | 1);
}

// The most significant byte first, whatever the host's order.
constexpr uint32_t big_endian(uint32_t word) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return __builtin_bswap32(word);
#else
    return word;
#endif
}

inline uint32_t load_big_endian(const uint8_t *from) {
    uint32_t word;
    memcpy(&word, from, sizeof word);
    return big_endian(word);
}

inline void store_big_endian(uint8_t *to, uint32_t word) {
    word = big_endian(word);
    memcpy(to, &word, sizeof word);
}

}  // namespace qorv
