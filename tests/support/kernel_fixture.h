// Tests of kernels, made once and run with every kernel set.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/kernel_sets.h"

namespace test {

// A fixture that runs its test with the kernel set of its parameter in place of the one that the library chose.
class WithKernelSet : public ::testing::TestWithParam<qorv::KernelSet> {
protected:
    WithKernelSet() : chosen_(qorv::active) { qorv::active = GetParam(); }
    ~WithKernelSet() override { qorv::active = chosen_; }

private:
    qorv::KernelSet chosen_;
};

}  // namespace test

#define INSTANTIATE_FOR_SETS(fixture, sets)                               \
    INSTANTIATE_TEST_SUITE_P(Kernels, fixture, ::testing::ValuesIn(sets), \
                             [](const auto &set) { return std::string(set.param.name); })
#define INSTANTIATE_FOR_KERNEL_SETS(fixture) INSTANTIATE_FOR_SETS(fixture, test::runnable_kernel_sets())
