// The conversion kernels of one instruction set.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "csc/converter_list.h"

namespace qorv {

// Converts `h` rows of `w` pixels, w >= CscKernels::block. Interleaved channels are in canonical arrangement, scattered
// ones packed, no destination overlaps anything: the driver sees to that. Strides are in bytes.
using CscKernel = void (*)(const uint8_t *const *src, const ptrdiff_t *src_stride, uint8_t *const *dst,
                           const ptrdiff_t *dst_stride, ptrdiff_t w, ptrdiff_t h);

struct CscKernels {
    ptrdiff_t block;        // pixels that every kernel can convert at a time
    CscKernel drop_2_bits;  // one plane of words to one of bytes: bits 9..2 of each sample
#define QORV_KERNEL_MEMBER(name, source, colour, dest) CscKernel name;
    QORV_CSC_CONVERTERS(QORV_KERNEL_MEMBER)
#undef QORV_KERNEL_MEMBER
};

}  // namespace qorv
