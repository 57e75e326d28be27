#include "core/memory_kernels.h"

#include "core/isa.h"
#include "core/simd.h"

namespace qorv::QORV_ISA {

namespace {

// Fills of at least a vector: whole vectors and one more that ends with the run.
template <class V>
void fill_vectors(uint8_t *dst, uint16_t value, size_t bytes) {
    const V all = splat<V>(value);
    uint8_t *last = dst + bytes - sizeof(V);
    for (; bytes >= 8 * sizeof(V); bytes -= 4 * sizeof(V), dst += 4 * sizeof(V)) {
        store(dst, all);
        store(dst + sizeof(V), all);
        store(dst + 2 * sizeof(V), all);
        store(dst + 3 * sizeof(V), all);
    }
    for (; dst < last; dst += sizeof(V)) store(dst, all);
    store(last, all);
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
void copy_rows(uint8_t *dst, const uint8_t *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t rows) {
    for (; rows > 1; rows -= 2) {
        copy_row<Bytes>(dst, src);
        copy_row<Bytes>(dst + dst_stride, src + src_stride);
        dst += 2 * dst_stride;
        src += 2 * src_stride;
    }
    if (rows == 1) copy_row<Bytes>(dst, src);
}

void copy_block(void *dst_start, const void *src_start, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t row_bytes,
                int32_t rows) {
    uint8_t *dst = static_cast<uint8_t *>(dst_start);
    const uint8_t *src = static_cast<const uint8_t *>(src_start);
    switch (row_bytes) {
        case 2:
            return copy_rows<2>(dst, src, dst_stride, src_stride, rows);
        case 4:
            return copy_rows<4>(dst, src, dst_stride, src_stride, rows);
        case 6:
            return copy_rows<6>(dst, src, dst_stride, src_stride, rows);
        case 8:
            return copy_rows<8>(dst, src, dst_stride, src_stride, rows);
        case 12:
            return copy_rows<12>(dst, src, dst_stride, src_stride, rows);
        case 16:
            return copy_rows<16>(dst, src, dst_stride, src_stride, rows);
        case 24:
            return copy_rows<24>(dst, src, dst_stride, src_stride, rows);
        case 32:
            return copy_rows<32>(dst, src, dst_stride, src_stride, rows);
        case 48:
            return copy_rows<48>(dst, src, dst_stride, src_stride, rows);
        case 64:
            return copy_rows<64>(dst, src, dst_stride, src_stride, rows);
        case 96:
            return copy_rows<96>(dst, src, dst_stride, src_stride, rows);
        default:
            return copy_rows<128>(dst, src, dst_stride, src_stride, rows);
    }
}

}  // namespace

constinit const MemoryKernels memory_kernels = {fill16, copy_block};

}  // namespace qorv::QORV_ISA
