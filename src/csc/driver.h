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

// Converts pictures that need more than a call of the kernel. `clear`: they are known to lie apart. Of `dst`, the order
// of the pointers may change.
void convert_other(const SourcePicture &src, DestPicture &dst, Size size, KernelMember kernel, bool clear);

// Converts w x h pixels, any w and h, with the outcome of the per-pixel loop: rows from the first, pixels from the
// left, all samples of a pixel read before its first is written, in the order of the pointers. Made for each pair of
// layouts: what must be found out of a small picture takes longer than its conversion.
template <Layout kSource, Layout kDest>
[[gnu::noinline]] void convert_picture(const void *const *src, const int32_t *src_stride, void *const *dst,
                                       const int32_t *dst_stride, int32_t w, int32_t h, KernelMember kernel) {
    if (w < 1 || h < 1) return;
    const SourcePicture from = picture_of<const uint8_t>(kSource, src, src_stride);
    DestPicture to = picture_of<uint8_t>(kDest, dst, dst_stride);
    const Size size{w, h};
    // Many planes against many take more comparisons than fit in here.
    constexpr bool kQuick = canonical_planes(kSource) == 1 || canonical_planes(kDest) == 1;
    const bool clear = kQuick && canonical(from) && canonical(to) && clearly_apart(from, to, size);
    if (clear) {
        // Rows one directly after the other are one long row.
        const Size rows = tight(from, w) && tight(to, w) ? Size{size.w * h, 1} : size;
        if (rows.w >= kLeastBlock) {
            (kernels_for(rows.w).*kernel)(from.p, from.stride, to.p, to.stride, rows.w, rows.h);
            return;
        }
    }
    convert_other(from, to, size, kernel, clear);
}

// Samples planes of bytes bilinearly and converts the samples, with the outcome of the per-pixel loop over the
// destination, which is `loop`. The kernel is that of the same layouts without scaling.
void scale_picture(const SourcePicture &src, Size src_size, DestPicture dst, Size dst_size, KernelMember kernel,
                   ScalingLoop loop);

}  // namespace qorv
