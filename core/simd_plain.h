// The primitives of core/simd.h for plain.
#pragma once

#ifdef QORV_SIMD_PLAIN

namespace qorv::QORV_ISA {

}  // namespace qorv::QORV_ISA

#endif
