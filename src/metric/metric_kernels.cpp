#include "metric/metric_kernels.h"

#include "core/isa.h"
#include "metric/diff.h"
#include "metric/sad.h"
#include "metric/satd.h"

namespace qorv::QORV_ISA {

#define QORV_SAD(w, h, suffix, A, B) .sad##w##x##h##suffix = block_sum<kMagnitudes, w, h, A, B>,
#define QORV_DIFF(w, h, suffix, A, B) .diff##w##x##h##suffix = block_diff<w, h, A, B>,
#define QORV_SATD(w, h, suffix, A, B) .satd##w##x##h##suffix = satd##w##x##h<A, B>,

// clang-format off
constinit const MetricKernels metric_kernels = {
    .sad = area_sum<kMagnitudes, uint8_t>,
    .sad_16 = area_sum<kMagnitudes, int16_t>,
    .ssd = area_sum<kSquares, uint8_t>,
    .ssd_16 = area_sum<kSquares, int16_t>,
    .satd = area_satd<uint8_t>,
    .satd_16 = area_satd<int16_t>,
    .diff = area_diff<uint8_t>,
    .diff_16 = area_diff<int16_t>,
    .hadamard4x4 = hadamard4x4,
    QORV_SAD_BLOCKS(QORV_SAD)
    QORV_DIFF_BLOCKS(QORV_DIFF)
    QORV_SATD_BLOCKS(QORV_SATD)
};
// clang-format on

}  // namespace qorv::QORV_ISA
