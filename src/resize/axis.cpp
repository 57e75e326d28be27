#include "resize/axis.h"

#include "qorv_skia.h"

namespace qorv {

namespace {

// The smallest shift, at most 4, after which no more than two source samples go to a destination sample.
int decimation_shift(int64_t ratio) {
    int shift = 0;
    while (shift < 4 && ratio > int64_t{2} << shift) shift++;
    return shift;
}

// A packed step: the step above three bits of shift.
uint32_t packed(const Axis &axis) {
    return static_cast<uint32_t>(axis.step << 3) | static_cast<uint32_t>(axis.shift);
}

}  // namespace

Axis axis_between(int32_t source, int32_t dest) {
    if (dest == 0) return {0, 0};
    const int shift = decimation_shift(int64_t{source} / dest);
    return {((int64_t{source} - 1) >> shift) * (int64_t{1} << kPositionBits) / dest, shift};
}

}  // namespace qorv

extern "C" void bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h, uint32_t *step_x,
                                       uint32_t *step_y) {
    *step_x = qorv::packed(qorv::axis_between(src_w, dst_w));
    *step_y = qorv::packed(qorv::axis_between(src_h, dst_h));
}

// Weights of the four neighbours for a position of fx and fy eighths; they sum to 64. Macros, as no function can
// initialise the arrays that the header declares.
#define QORV_WEIGHTS(fx, fy) \
    { (8 - (fx)) * (8 - (fy)), (fx) * (8 - (fy)), (8 - (fx)) * (fy), (fx) * (fy) }
#define QORV_WEIGHT_ROW(fx)                                                                                  \
    QORV_WEIGHTS(fx, 0), QORV_WEIGHTS(fx, 1), QORV_WEIGHTS(fx, 2), QORV_WEIGHTS(fx, 3), QORV_WEIGHTS(fx, 4), \
        QORV_WEIGHTS(fx, 5), QORV_WEIGHTS(fx, 6), QORV_WEIGHTS(fx, 7)
#define QORV_WEIGHT_TABLE                                                                                   \
    {                                                                                                       \
        QORV_WEIGHT_ROW(0), QORV_WEIGHT_ROW(1), QORV_WEIGHT_ROW(2), QORV_WEIGHT_ROW(3), QORV_WEIGHT_ROW(4), \
            QORV_WEIGHT_ROW(5), QORV_WEIGHT_ROW(6), QORV_WEIGHT_ROW(7)                                      \
    }

extern "C" const uint8_t qorv_tbl_bilinear_rszw[64][4] = QORV_WEIGHT_TABLE;
extern "C" const uint8_t qorv_irsz_tbl_rsz_weight[64][4] = QORV_WEIGHT_TABLE;
