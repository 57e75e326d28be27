// What stands between a converter's arguments and its kernel: small, narrow and rearranged pictures, and overlap.
#pragma once

#include "core/isa.h"
#include "csc/csc_kernels.h"
#include "csc/overlap.h"
#include "csc/pixel_kernels.h"

namespace qorv {

// The place of a converter in a set of kernels.
using KernelMember = CscKernel CscKernels::*;

// The set of the longest blocks that fit into `n` pixels.
inline const CscKernels &kernels_for(ptrdiff_t n) {
    const CscKernels *set = active.csc;
    while (n < set->block) set = set->narrower;
    return *set;
}

// The layouts that a converter is between.
struct Layouts {
    Layout src, dst;
};

// Converts pictures that need more than a call of the kernel. `clear`: they are known to be canonical and to lie apart,
// in rows shorter than a block.
void convert_other(const Layouts &layouts, const void *const *src, const int32_t *src_stride, void *const *dst,
                   const int32_t *dst_stride, ptrdiff_t w, ptrdiff_t h, KernelMember kernel, bool clear);

// Converts w x h pixels, any w and h, with the outcome of the per-pixel loop: rows from the first, pixels from the
// left, all samples of a pixel read before its first is written, in the order of the pointers. Made for each pair of
// layouts: what must be found out of a small picture takes longer than its conversion.
template <Layouts kLayouts>
[[gnu::noinline]] void convert_picture(const void *const *src, const int32_t *src_stride, void *const *dst,
                                       const int32_t *dst_stride, int32_t w, int32_t h, KernelMember kernel) {
    if (w < 1 || h < 1) return;
    const SourcePicture from{kLayouts.src, src, src_stride};
    const DestPicture to{kLayouts.dst, dst, dst_stride};
    // Rows one directly after the other are one long row.
    const Size size = tight(from, w) && tight(to, w) ? Size{ptrdiff_t{w} * h, 1} : Size{w, h};
    // Many planes against many take more comparisons than fit in here.
    constexpr bool kQuick = canonical_planes(kLayouts.src) == 1 || canonical_planes(kLayouts.dst) == 1;
    const bool clear = kQuick && canonical(from) && canonical(to) && clearly_apart(from, to, size);
    if (clear && size.w >= kLeastBlock) {
        return (kernels_for(size.w).*kernel)(src, src_stride, dst, dst_stride, size.w, size.h);
    }
    convert_other(kLayouts, src, src_stride, dst, dst_stride, size.w, size.h, kernel, clear);
}

// Samples planes of bytes bilinearly and converts the samples, with the outcome of the per-pixel loop over the
// destination, which is `loop`. The kernel is that of the same layouts without scaling.
void scale_picture(const SourcePicture &src, Size src_size, DestPicture dst, Size dst_size, KernelMember kernel,
                   ScalingLoop loop);

}  // namespace qorv
