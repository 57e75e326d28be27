// The converters that work plane by plane.
#include <string.h>

#include "csc/driver.h"
#include "qorv_skia.h"

namespace {

// Copies byte by byte from the first, so that a destination 1 to n - 1 bytes behind its source receives the source's
// beginning over and over.
void copy_forward(uint8_t *dst, const uint8_t *src, size_t n) {
    const uintptr_t distance = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
    if (distance == 0 || distance >= n) {
        memmove(dst, src, n);
        return;
    }
    // What is written repeats with the period `distance`, so the run to copy from doubles.
    for (size_t done = 0, run = distance; done < n; done += run, run = distance + done) {
        if (run > n - done) run = n - done;
        memcpy(dst + done, src, run);
    }
}

void copy_plane(uint8_t *dst, int32_t dst_stride, const uint8_t *src, int32_t src_stride, int32_t w, int32_t h) {
    if (w < 1) return;
    const size_t row = static_cast<size_t>(w);
    if (w == dst_stride && w == src_stride) {
        copy_forward(dst, src, row * static_cast<size_t>(h));
        return;
    }
    for (int32_t y = 0; y < h; y++, dst += dst_stride, src += src_stride) copy_forward(dst, src, row);
}

}  // namespace

extern "C" void qorv_csc_yuv444x_to_yuv444x(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t, void *const *dst, int32_t, int32_t,
                                            const int32_t *dst_stride, int32_t dst_cs) {
    if (src_h < 1) return;
    const int planes = dst_cs == QORV_CS_YUVA444 && src[3] != nullptr ? 4 : 3;
    for (int i = 0; i < planes; i++) {
        copy_plane(static_cast<uint8_t *>(dst[i]), dst_stride[i], static_cast<const uint8_t *>(src[i]), src_stride[i],
                   src_w, src_h);
    }
}

extern "C" void qorv_csc_p010_to_yuv420(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t, void *const *dst, int32_t, int32_t, const int32_t *dst_stride,
                                        int32_t) {
    for (int i = 0; i < 3; i++) {
        const int halved = i == 0 ? 0 : 1;  // chroma sizes are rounded down
        qorv::convert_picture<qorv::Layouts{qorv::WordPlane::layout, qorv::BytePlane::layout}>(
            src + i, src_stride + i, dst + i, dst_stride + i, src_w >> halved, src_h >> halved,
            &qorv::CscKernels::drop_2_bits);
    }
}
