// The primitives of core/simd.h for neon.
#pragma once

#ifdef QORV_SIMD_NEON

namespace qorv::QORV_ISA {

}  // namespace qorv::QORV_ISA

#endif
