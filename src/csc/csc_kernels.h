// The conversion kernels of one instruction set.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "core/isa.h"
#include "csc/converter_list.h"

namespace qorv {

// Blocks that a kernel may read before it writes the first of them.
constexpr ptrdiff_t kBlocksAhead = 2;

// Converts `h` rows of `w` pixels, w >= CscKernels::block, row by row, each from the left in blocks. What is left of a
// row goes as a block that ends with it: then no destination may overlap a source. Interleaved channels are in
// canonical arrangement, scattered ones packed; the driver sees to that. Strides are those of a converter.
using CscKernel = void (*)(const void *const *src, const int32_t *src_stride, void *const *dst,
                           const int32_t *dst_stride, ptrdiff_t w, ptrdiff_t h);

// Copies `n` pixels, each with its bytes in another order: byte k is byte order[k] of the source's pixel.
using ReorderKernel = void (*)(const uint8_t *src, uint8_t *dst, const uint8_t *order, ptrdiff_t n);

struct CscKernels {
    ptrdiff_t block;             // pixels that every kernel can convert at a time
    const CscKernels *narrower;  // kernels of shorter blocks
    ReorderKernel reorder3, reorder4;
    CscKernel yuv444_to_bgr888;
    CscKernel drop_2_bits;  // one plane of words to one of bytes: bits 9..2 of each sample
#define QORV_KERNEL_MEMBER(name, source, colour, dest) CscKernel name;
    QORV_CSC_CONVERTERS(QORV_KERNEL_MEMBER)
#undef QORV_KERNEL_MEMBER
};

// The shortest block of vectors, on every processor.
constexpr ptrdiff_t kLeastBlock = 16;

// The loops over pixels: blocks of one, for channels in any arrangement and any overlap.
namespace pixel {
extern QORV_INTERNAL const CscKernels csc_kernels;
}

}  // namespace qorv
