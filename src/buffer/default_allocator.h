// The allocator pair of a record whose creator gave none: 32-byte-aligned memory, no auxiliary address.
#pragma once

#include "qorv_skia.h"

namespace qorv {

inline void *default_alloc(uint32_t size, uint64_t * /*aux*/) {
    // The aligned allocator counts in signed 32 bits; a size beyond that must fail rather than wrap to a tiny block.
    return size <= INT32_MAX ? qorv_malloc_align32(static_cast<int32_t>(size)) : nullptr;
}

inline void default_free(void *block, uint64_t /*aux*/) {
    qorv_mfree_align32(block);
}

}  // namespace qorv
