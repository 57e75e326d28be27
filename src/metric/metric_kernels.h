// The block metrics of one instruction set.
#pragma once

#include <stdint.h>

#include "metric/member_list.h"

namespace qorv {

template <class A, class B>
using BlockCost = uint32_t(const A *a, const B *b, int32_t stride_a, int32_t stride_b);
template <class T>
using AreaCost = uint32_t(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b);
template <class A, class B>
using BlockDiff = void(const A *a, const B *b, int32_t stride_a, int32_t stride_b, int32_t stride_out, int16_t *out);
template <class T>
using AreaDiff = void(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b,
                      int32_t stride_out, int16_t *out);

struct MetricKernels {
#define QORV_SAD(w, h, suffix, A, B) BlockCost<A, B> *sad##w##x##h##suffix;
#define QORV_DIFF(w, h, suffix, A, B) BlockDiff<A, B> *diff##w##x##h##suffix;
#define QORV_SATD(w, h, suffix, A, B) BlockCost<A, B> *satd##w##x##h##suffix;
#define QORV_AREA_COST(name, T) AreaCost<T> *name;
#define QORV_AREA_DIFF(name, T) AreaDiff<T> *name;
    QORV_AREA_COSTS(QORV_AREA_COST)
    QORV_AREA_DIFFS(QORV_AREA_DIFF)
    uint32_t (*hadamard4x4)(const int16_t *residual);
    QORV_SAD_BLOCKS(QORV_SAD)
    QORV_DIFF_BLOCKS(QORV_DIFF)
    QORV_SATD_BLOCKS(QORV_SATD)
#undef QORV_SAD
#undef QORV_DIFF
#undef QORV_SATD
#undef QORV_AREA_COST
#undef QORV_AREA_DIFF
};

}  // namespace qorv
