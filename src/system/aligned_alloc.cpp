#include <stdlib.h>
#include <string.h>

#include "qorv_skia.h"

namespace {

constexpr uintptr_t kAlignment = 32;
// Room for the alignment and for the system allocator's address in the 8 bytes before the block: the block starts 8 to
// 39 bytes after that address.
constexpr int64_t kOverhead = 40;

void *allocate(int32_t size) {
    // A size of -40 to -1 asks the system for a tiny block; any other negative one wraps to a request that cannot be
    // met.
    void *raw = malloc(static_cast<size_t>(static_cast<int64_t>(size) + kOverhead));
    if (raw == nullptr) return nullptr;
    const uintptr_t address = (reinterpret_cast<uintptr_t>(raw) + kOverhead - 1) & ~(kAlignment - 1);
    char *block = static_cast<char *>(raw) + (address - reinterpret_cast<uintptr_t>(raw));
    memcpy(block - sizeof raw, &raw, sizeof raw);
    return block;
}

void release(void *block) {
    if (block == nullptr) return;
    void *raw;
    memcpy(&raw, static_cast<char *>(block) - sizeof raw, sizeof raw);
    free(raw);
}

}  // namespace

extern "C" void *qorv_malloc_align32(int32_t size) {
    return allocate(size);
}

extern "C" void qorv_mfree_align32(void *ptr) {
    release(ptr);
}

extern "C" void *qorv_malloc_fast_align32(int32_t size) {
    return allocate(size);
}

extern "C" void qorv_mfree_fast_align32(void *ptr) {
    release(ptr);
}
