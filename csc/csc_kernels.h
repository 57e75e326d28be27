// The converters of one instruction set.
#pragma once

#include "qorv_skia.h"

namespace qorv {

struct CscKernels {
    qorv_csc_fn none;
};

}  // namespace qorv
