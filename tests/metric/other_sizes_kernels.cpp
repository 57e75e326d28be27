#include "metric/diff.h"
#include "metric/other_sizes.h"
#include "metric/sad.h"

namespace qorv::QORV_ISA {

extern const test::OtherSizes other_sizes;

#define QORV_BLOCK(w, h, suffix, A, B) \
    .sad##w##x##h##suffix = block_sum<kMagnitudes, w, h, A, B>, .diff##w##x##h##suffix = block_diff<w, h, A, B>,

constinit const test::OtherSizes other_sizes = {QORV_OTHER_BLOCKS(QORV_BLOCK)};

}  // namespace qorv::QORV_ISA
