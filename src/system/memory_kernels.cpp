#include "system/memory_kernels.h"

#include "core/isa.h"
#include "core/simd.h"

namespace qorv::QORV_ISA {

namespace {

// Fills of at least a vector. Up to eight vectors are stored from both ends, overlapping in the middle. Between the
// first and the last vector of a longer run the stores are aligned: those that cross a cache line take several times as
// long.
template <class V>
[[gnu::always_inline]] inline void fill_vectors(uint8_t *dst, uint16_t value, size_t bytes) {
    const V ends = splat<V>(value);
    uint8_t *last = dst + bytes - sizeof(V);
    store(dst, ends);
    store(last, ends);
    if (bytes <= 2 * sizeof(V)) return;
    if (bytes <= 8 * sizeof(V)) {
        store(dst + sizeof(V), ends);
        store(last - sizeof(V), ends);
        if (bytes <= 4 * sizeof(V)) return;
        for (size_t i = 2; i < 4; i++) {
            store(dst + i * sizeof(V), ends);
            store(last - i * sizeof(V), ends);
        }
        return;
    }
    const size_t head = sizeof(V) - reinterpret_cast<uintptr_t>(dst) % sizeof(V);
    const V body = head % 2 == 0 ? ends : splat<V>(value << 8 | value >> 8);
    dst += head;
    for (; dst + 3 * sizeof(V) < last; dst += 4 * sizeof(V)) {
        for (size_t i = 0; i < 4; i++) store(dst + i * sizeof(V), body);
    }
    for (; dst < last; dst += sizeof(V)) store(dst, body);
}

void fill16(void *dst, uint16_t value, size_t n) {
    uint8_t *bytes = static_cast<uint8_t *>(dst);
    if (n >= sizeof(U16) / 2) return fill_vectors<U16>(bytes, value, 2 * n);
    if (n >= 8) return fill_vectors<Vec<uint16_t, 16>>(bytes, value, 2 * n);
    if (n >= 4) return fill_vectors<Vec<uint16_t, 8>>(bytes, value, 2 * n);
    for (size_t i = 0; i < n; i++) memcpy(bytes + 2 * i, &value, 2);
}

// A row in the fewest loads and stores, none of them beyond it.
template <int Bytes>
[[gnu::always_inline]] inline void copy_row(uint8_t *dst, const uint8_t *src) {
    constexpr int kStep = Bytes >= kVectorBytes ? kVectorBytes : Bytes >= 16 ? 16 : Bytes >= 8 ? 8 : Bytes >= 4 ? 4 : 2;
    if constexpr (kStep >= 16) {
        store(dst, load<Vec<uint8_t, kStep>>(src));
    } else {
        memcpy(dst, src, kStep);
    }
    if constexpr (Bytes > kStep) copy_row<Bytes - kStep>(dst + kStep, src + kStep);
}

template <int Bytes>
void copy_rows(void *dst, const void *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t rows) {
    uint8_t *to = static_cast<uint8_t *>(dst);
    const uint8_t *from = static_cast<const uint8_t *>(src);
    for (; rows > 1; rows -= 2) {
        copy_row<Bytes>(to, from);
        copy_row<Bytes>(to + dst_stride, from + src_stride);
        to += 2 * dst_stride;
        from += 2 * src_stride;
    }
    if (rows == 1) copy_row<Bytes>(to, from);
}

}  // namespace

#define QORV_COPY_ROWS(sample)                                                                              \
    {                                                                                                       \
        copy_rows<2 * sample>, copy_rows<4 * sample>, copy_rows<6 * sample>, copy_rows<8 * sample>,         \
            copy_rows<12 * sample>, copy_rows<16 * sample>, copy_rows<24 * sample>, copy_rows<32 * sample>, \
            copy_rows<48 * sample>, copy_rows<64 * sample>                                                  \
    }

constinit const MemoryKernels memory_kernels = {fill16, {QORV_COPY_ROWS(1), QORV_COPY_ROWS(2)}};

}  // namespace qorv::QORV_ISA
