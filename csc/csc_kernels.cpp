#include "csc/csc_kernels.h"

#include "core/isa.h"
#include "core/simd.h"

namespace qorv::QORV_ISA {

constinit const CscKernels csc_kernels = {nullptr};

}  // namespace qorv::QORV_ISA
