// The memory routines that gain from wide registers. Byte fills and long copies are the C library's.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qorv {

struct MemoryKernels {
    // Fills `n` samples; dst has any alignment.
    void (*fill16)(void *dst, uint16_t value, size_t n);
    // Copies `rows` rows of `row_bytes` bytes, which is 2, 4, 6, 8, 12, 16, 24, 32, 48, 64, 96 or 128. Strides in
    // bytes.
    void (*copy_block)(void *dst, const void *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t row_bytes,
                       int32_t rows);
};

}  // namespace qorv
