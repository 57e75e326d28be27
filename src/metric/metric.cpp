#include "core/isa.h"
#include "metric/metric_kernels.h"
#include "qorv_skia.h"

// Of the members that the build has in more than one set; the others' kernels are exported themselves.
#ifdef QORV_ONLY_SET

extern "C" uint32_t qorv_ssd(int32_t w, int32_t h, const uint8_t *a, const uint8_t *b, int32_t stride_a,
                             int32_t stride_b) {
    return qorv::active.metric->ssd(w, h, a, b, stride_a, stride_b);
}

#else

#define QORV_SAD(w, h, suffix, A, B)                                                                            \
    extern "C" uint32_t qorv_sad##w##x##h##suffix(const A *a, const B *b, int32_t stride_a, int32_t stride_b) { \
        return qorv::active.metric->sad##w##x##h##suffix(a, b, stride_a, stride_b);                             \
    }
#define QORV_SATD(w, h, suffix, A, B)                                                                            \
    extern "C" uint32_t qorv_satd##w##x##h##suffix(const A *a, const B *b, int32_t stride_a, int32_t stride_b) { \
        return qorv::active.metric->satd##w##x##h##suffix(a, b, stride_a, stride_b);                             \
    }
#define QORV_DIFF(w, h, suffix, A, B)                                                                      \
    extern "C" void qorv_diff##w##x##h##suffix(const A *a, const B *b, int32_t stride_a, int32_t stride_b, \
                                               int32_t stride_out, int16_t *out) {                         \
        qorv::active.metric->diff##w##x##h##suffix(a, b, stride_a, stride_b, stride_out, out);             \
    }
#define QORV_AREA_COST(name, T)                                                                     \
    extern "C" uint32_t qorv_##name(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, \
                                    int32_t stride_b) {                                             \
        return qorv::active.metric->name(w, h, a, b, stride_a, stride_b);                           \
    }
#define QORV_AREA_DIFF(name, T)                                                                                   \
    extern "C" void qorv_##name(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b, \
                                int32_t stride_out, int16_t *out) {                                               \
        qorv::active.metric->name(w, h, a, b, stride_a, stride_b, stride_out, out);                               \
    }

QORV_SAD_BLOCKS(QORV_SAD)
QORV_DIFF_BLOCKS(QORV_DIFF)
QORV_SATD_BLOCKS(QORV_SATD)
QORV_AREA_COSTS(QORV_AREA_COST)
QORV_AREA_DIFFS(QORV_AREA_DIFF)

extern "C" uint32_t qorv_hadamard4x4(const int16_t *residual) {
    return qorv::active.metric->hadamard4x4(residual);
}

#endif
