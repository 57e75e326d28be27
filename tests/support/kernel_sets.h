// Every kernel set that this machine can run, for tests that are made once and run for all of them.
#pragma once

#include <vector>

#include "core/isa.h"

namespace test {

// Never empty; the plain set is always among them.
const std::vector<qorv::KernelSet> &runnable_kernel_sets();

// The same, and those that have metrics alone of their own.
const std::vector<qorv::KernelSet> &runnable_metric_sets();

}  // namespace test
