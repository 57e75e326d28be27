// Resizing a pixel at a time, for destinations that share memory with their source: every pixel is read, weighed and
// written before the next one, rows from the top, each from the left.
#pragma once

#include "resize/resize_kernels.h"

namespace qorv {

extern const PictureKernels in_order;

// Whether the order of pixels is free: no byte of the destination is written twice or lies in the source. Pixels have
// `src_bytes` and `dst_bytes`. "No" may be wrong.
bool order_is_free(const ResizeJob &job, int32_t src_bytes, int32_t dst_bytes);

}  // namespace qorv
