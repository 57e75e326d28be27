// The primitives of core/simd.h for x86.
#pragma once

#ifdef QORV_SIMD_X86

namespace qorv::QORV_ISA {

}  // namespace qorv::QORV_ISA

#endif
