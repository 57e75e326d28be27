// The converters once more: a pixel at a time, in 32-bit arithmetic, from a table that says where every sample goes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qorv_skia.h"

namespace test {

// What passes through one pointer: samples of `bytes` bytes, `step` bytes apart. As a source, `what` is "R", "G", "B",
// "A", "Y", "U", "V" or "W" (a 5-6-5 word); as a destination also "1" (255).
struct CscPointer {
    char what;
    int bytes, step;
};

struct CscCase {
    const char *name;
    qorv_csc_fn fn;
    bool to_rgb, to_yuv;               // the formula; neither: samples are passed on
    bool deep;                         // words of 10 bits (letters y, u, v, r, g, b), strides in samples
    std::vector<CscPointer> src, dst;  // what = ' ': the pointer is not used
};

const std::vector<CscCase> &csc_cases();

// The scaling converters, each with the case that it samples for.
struct CscScalingCase {
    const char *name;
    qorv_csc_fn fn;
    const CscCase *unscaled;
};

const std::vector<CscScalingCase> &csc_scaling_cases();

// Converts with rows from the first, pixels from the left, a pixel's samples read before its first is written.
void csc_reference(const CscCase &c, const void *const *src, int32_t w, int32_t h, const int32_t *src_stride,
                   void *const *dst, const int32_t *dst_stride);
void csc_scaling_reference(const CscCase &c, const void *const *src, int32_t src_w, int32_t src_h,
                           const int32_t *src_stride, void *const *dst, int32_t dst_w, int32_t dst_h,
                           const int32_t *dst_stride);

}  // namespace test
