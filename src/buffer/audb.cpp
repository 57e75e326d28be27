#include "buffer/default_allocator.h"
#include "buffer/reference.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

void free_buffers(QORV_AUDB &audb) {
    for (int i = 0; i < 8; i++) {
        if (audb.buf[i] != nullptr) audb.free(audb.buf[i], audb.aux[i]);
    }
}

int32_t allocate_buffers(QORV_AUDB &audb, int32_t count, uint32_t samples, uint32_t bytes) {
    for (int32_t i = 0; i < count; i++) {
        audb.buf[i] = audb.alloc(bytes, &audb.aux[i]);
        if (audb.buf[i] == nullptr) {
            free_buffers(audb);
            return QORV_ERR_ALLOC_FAILED;
        }
        audb.samples[i] = samples;
        audb.size[i] = bytes;
    }
    return QORV_OK;
}

}  // namespace

extern "C" QORV_AUDB *qorv_audb_create(uint32_t samples, int32_t channels, uint32_t bits, uint32_t attr, int32_t layout,
                                       uint64_t /*unused*/, qorv_alloc_fn alloc, qorv_free_fn release,
                                       int32_t *status) {
    return create_record<free_buffers, QORV_AUDB>(status, [&](QORV_AUDB &audb) -> int32_t {
        audb.channels = channels;
        audb.bits = bits;
        audb.attr = attr;
        audb.layout = layout;
        audb.alloc = alloc != nullptr ? alloc : default_alloc;
        audb.free = alloc != nullptr ? release : default_free;
        const uint64_t sample_bytes = (uint64_t{bits} + 7) >> 3;
        audb.interleaved = layout >= 1 && layout <= 99 ? 1 : 0;
        uint32_t bytes;
        if (__builtin_mul_overflow(sample_bytes, samples, &bytes)) return QORV_ERR_ALLOC_FAILED;
        if (audb.interleaved == 0) return allocate_buffers(audb, channels, samples, bytes);
        if (__builtin_mul_overflow(bytes, static_cast<uint32_t>(channels), &bytes)) return QORV_ERR_ALLOC_FAILED;
        return allocate_buffers(audb, 1, samples, bytes);
    });
}
