#include "metric/metric_kernels.h"

#include "core/isa.h"
#include "metric/diff.h"
#include "metric/sad.h"
#include "metric/satd.h"
#include "qorv_skia.h"

// Where the build has one set for a member, its kernel is the exported function itself, without a jump through a table.
#if defined(QORV_ONLY_SET) || defined(QORV_PARTIAL_SET)
#define QORV_KERNEL(member) qorv_##member
#else
#define QORV_KERNEL(member) member
#endif

#ifndef QORV_PARTIAL_SET
#ifdef QORV_ONLY_SET
using namespace qorv::QORV_ISA;
#else
namespace qorv::QORV_ISA {
namespace {
#endif

#define QORV_COST(member, A, B, body)                                                          \
    uint32_t QORV_KERNEL(member)(const A *a, const B *b, int32_t stride_a, int32_t stride_b) { \
        return body(a, b, stride_a, stride_b);                                                 \
    }
#define QORV_SAD(w, h, suffix, A, B) QORV_COST(sad##w##x##h##suffix, A, B, (block_sum<kMagnitudes, w, h, A, B>))
#define QORV_SATD(w, h, suffix, A, B) QORV_COST(satd##w##x##h##suffix, A, B, (qorv::QORV_ISA::satd##w##x##h<A, B>))
#define QORV_DIFF(w, h, suffix, A, B)                                                                   \
    void QORV_KERNEL(diff##w##x##h##suffix)(const A *a, const B *b, int32_t stride_a, int32_t stride_b, \
                                            int32_t stride_out, int16_t *out) {                         \
        block_diff<w, h>(a, b, stride_a, stride_b, stride_out, out);                                    \
    }
#define QORV_AREA_COST(member, T, body)                                                                              \
    uint32_t QORV_KERNEL(member)(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) { \
        return body<T>(w, h, a, b, stride_a, stride_b);                                                              \
    }
#define QORV_AREA_DIFF(member, T)                                                                              \
    void QORV_KERNEL(member)(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b, \
                             int32_t stride_out, int16_t *out) {                                               \
        area_diff(w, h, a, b, stride_a, stride_b, stride_out, out);                                            \
    }

QORV_SAD_BLOCKS(QORV_SAD)
QORV_SATD_BLOCKS(QORV_SATD)
QORV_DIFF_BLOCKS(QORV_DIFF)
QORV_AREA_COST(sad, uint8_t, area_sad)
QORV_AREA_COST(sad_16, int16_t, area_sad)
QORV_AREA_COST(ssd_16, int16_t, area_ssd)
QORV_AREA_COST(satd, uint8_t, area_satd)
QORV_AREA_COST(satd_16, int16_t, area_satd)
QORV_AREA_DIFFS(QORV_AREA_DIFF)
uint32_t QORV_KERNEL(hadamard4x4)(const int16_t *residual) {
    return hadamard(residual);
}

#undef QORV_SAD
#undef QORV_SATD
#undef QORV_DIFF
#ifndef QORV_ONLY_SET
}  // namespace
}  // namespace qorv::QORV_ISA
#endif
#endif

namespace qorv::QORV_ISA {

#define QORV_SLOT(member) .member = QORV_KERNEL(member),
#define QORV_SAD(w, h, suffix, A, B) QORV_SLOT(sad##w##x##h##suffix)
#define QORV_DIFF(w, h, suffix, A, B) QORV_SLOT(diff##w##x##h##suffix)
#define QORV_SATD(w, h, suffix, A, B) QORV_SLOT(satd##w##x##h##suffix)

// clang-format off
constinit const MetricKernels metric_kernels = {
    QORV_SLOT(sad)
    QORV_SLOT(sad_16)
    .ssd = area_ssd<uint8_t>,  // all that a set for dot products has
    QORV_SLOT(ssd_16)
    QORV_SLOT(satd)
    QORV_SLOT(satd_16)
    QORV_SLOT(diff)
    QORV_SLOT(diff_16)
    QORV_SLOT(hadamard4x4)
    QORV_SAD_BLOCKS(QORV_SAD)
    QORV_DIFF_BLOCKS(QORV_DIFF)
    QORV_SATD_BLOCKS(QORV_SATD)
};
// clang-format on

}  // namespace qorv::QORV_ISA
