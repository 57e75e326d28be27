// Lets an input choose the kernel set that runs.
#pragma once

#include "input.h"
#include "support/kernel_sets.h"

namespace fuzz {

inline void choose_kernels(Input &input) {
    const auto &sets = test::runnable_metric_sets();
    qorv::active = sets[input.byte() % sets.size()];
}

}  // namespace fuzz
