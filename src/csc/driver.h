// What stands between a converter's arguments and its kernel: the arrangement of channels, narrow pictures, overlap.
#pragma once

#include "csc/csc_kernels.h"
#include "csc/layouts.h"

namespace qorv {

// Channel or plane pointers of one picture with their strides as the caller gave them (in bytes).
template <class Byte>
struct Picture {
    const Layout &layout;
    Byte *p[kMaxChannels];
    ptrdiff_t stride[kMaxChannels];
};
using SourcePicture = Picture<const uint8_t>;
using DestPicture = Picture<uint8_t>;

SourcePicture source_picture(const Layout &layout, const void *const *src, const int32_t *stride);
DestPicture dest_picture(const Layout &layout, void *const *dst, const int32_t *stride);

// Converts w x h pixels, any w and h, with the outcome of the per-pixel loop: rows from the first, pixels from the
// left, all samples of a pixel read before its first is written, in the order of the pointers.
void convert_picture(const SourcePicture &src, const DestPicture &dst, CscKernel kernel, int32_t w, int32_t h);

// Samples planes of bytes bilinearly and converts the samples, for any destination size, with the outcome of the
// per-pixel loop over the destination. All sizes are at least 1. The kernel is that of the same layouts without scaling.
void scale_picture(const SourcePicture &src, int32_t src_w, int32_t src_h, const DestPicture &dst, int32_t dst_w,
                   int32_t dst_h, CscKernel kernel);

}  // namespace qorv
