// The exported converters that are source layout x colour x destination layout, of equal size and scaling.
#include "csc/driver.h"
#include "qorv_skia.h"

#define QORV_CONVERTER(name, source, colour, dest)                                                                   \
    extern "C" void qorv_csc_##name(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride, \
                                    uint64_t, void *const *dst, int32_t, int32_t, const int32_t *dst_stride,         \
                                    int32_t) {                                                                       \
        qorv::convert_picture<qorv::Layouts{qorv::source::layout, qorv::dest::layout}>(                              \
            src, src_stride, dst, dst_stride, src_w, src_h, &qorv::CscKernels::name);                                \
    }
QORV_CSC_CONVERTERS(QORV_CONVERTER)

#define QORV_SCALING_CONVERTER(name, source, colour, dest)                                                    \
    extern "C" void qorv_csc_rsz_##name(const void *const *src, int32_t src_w, int32_t src_h,                 \
                                        const int32_t *src_stride, uint64_t, void *const *dst, int32_t dst_w, \
                                        int32_t dst_h, const int32_t *dst_stride, int32_t) {                  \
        if (src_w < 1 || src_h < 1 || dst_w < 1 || dst_h < 1) return;                                         \
        qorv::scale_picture({qorv::source::layout, src, src_stride}, {src_w, src_h},                          \
                            {qorv::dest::layout, dst, dst_stride}, {dst_w, dst_h}, &qorv::CscKernels::name,   \
                            qorv::pixel::scaling_loops.name);                                                 \
    }
QORV_CSC_SCALING_CONVERTERS(QORV_SCALING_CONVERTER)
