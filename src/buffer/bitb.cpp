#include "buffer/reference.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

void *system_alloc(uint32_t size, uint64_t * /*aux*/) {
    return malloc(size);
}

void system_free(void *block, uint64_t /*aux*/) {
    free(block);
}

void free_bytes(QORV_BITB &bitb) {
    if (bitb.buf != nullptr && bitb.free != nullptr) bitb.free(bitb.buf, bitb.aux);
}

}  // namespace

extern "C" QORV_BITB *qorv_bitb_create(uint32_t capacity, uint32_t type, uint64_t /*unused*/, qorv_alloc_fn alloc,
                                       qorv_free_fn release, int32_t *status) {
    return create_record<free_bytes, QORV_BITB>(status, [&](QORV_BITB &bitb) {
        bitb.type = type;
        bitb.alloc = alloc != nullptr ? alloc : system_alloc;
        bitb.free = alloc != nullptr ? release : system_free;
        bitb.buf = bitb.alloc(capacity, &bitb.aux);
        return bitb.buf != nullptr ? QORV_OK : QORV_ERR_BITB_ALLOC_FAILED;
    });
}
