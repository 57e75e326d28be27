#include "system/memory_kernels.h"

#include "core/hide_origin.h"
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

template <int Bytes>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_piece(const uint8_t *src) {
    auto piece = load<Vec<uint8_t, Bytes>>(src);
#ifndef QORV_SIMD_PLAIN
    // A compiler would take vectors that are only copied through pairs of general registers.
    if constexpr (Bytes >= 16) hide_origin(piece);
#endif
    return piece;
}

template <class V>
[[gnu::always_inline]] inline void store_piece(uint8_t *dst, const V &piece) {
    store(dst, piece);
}

#ifdef QORV_SIMD_NEON
constexpr int kMostBytes = 64;

template <int Bytes>
requires(Bytes == 64) [[gnu::always_inline]] inline uint8x16x4_t load_piece(const uint8_t *src) {
    return vld1q_u8_x4(src);
}

[[gnu::always_inline]] inline void store_piece(uint8_t *dst, const uint8x16x4_t &piece) {
    vst1q_u8_x4(dst, piece);
}
#else
constexpr int kMostBytes = kVectorBytes;
#endif

constexpr int largest_piece(int bytes) {
    return bytes >= kMostBytes ? kMostBytes : bytes >= 16 ? 16 : bytes >= 8 ? 8 : bytes >= 4 ? 4 : 2;
}

// Copies rows in the fewest loads and stores, none of them beyond a row. What is loaded is stored after all that comes
// behind it has been loaded.
template <int Bytes, int Rows, int At = 0>
[[gnu::always_inline]] inline void copy_together(uint8_t *dst, const uint8_t *src, ptrdiff_t dst_stride,
                                                 ptrdiff_t src_stride) {
    if constexpr (At < Bytes) {
        constexpr int kStep = largest_piece(Bytes - At);
        const auto piece = load_piece<kStep>(src + At);
        copy_together<Bytes, Rows, At + kStep>(dst, src, dst_stride, src_stride);
        store_piece(dst + At, piece);
    } else if constexpr (Rows > 1) {
        copy_together<Bytes, Rows - 1>(dst + dst_stride, src + src_stride, dst_stride, src_stride);
    }
}

template <int Bytes>
void copy_rows(void *dst, const void *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t rows) {
    uint8_t *to = static_cast<uint8_t *>(dst);
    const uint8_t *from = static_cast<const uint8_t *>(src);
    if (rows < 1) return;
    if (rows % 2 != 0) {  // first: behind the loop its pointers would have to be there
        copy_together<Bytes, 1>(to, from, dst_stride, src_stride);
        to += dst_stride;
        from += src_stride;
    }
    for (rows /= 2; rows > 0; rows--, from += 2 * src_stride, to += 2 * dst_stride) {
        copy_together<Bytes, 2>(to, from, dst_stride, src_stride);
    }
}

// The copiers of the widths from kBlockWidths[Place] on, in samples of `Bytes` bytes.
template <int Bytes, int Place = 0>
constexpr void list_copiers(CopyRows *copiers) {
    copiers[Place] = copy_rows<Bytes * kBlockWidths[Place]>;
    if constexpr (Place + 1 < kBlockWidthCount) list_copiers<Bytes, Place + 1>(copiers);
}

constexpr MemoryKernels list_kernels() {
    MemoryKernels kernels = {fill16, {}};
    list_copiers<1>(kernels.copy_rows[0]);
    list_copiers<2>(kernels.copy_rows[1]);
    return kernels;
}

}  // namespace

constinit const MemoryKernels memory_kernels = list_kernels();

}  // namespace qorv::QORV_ISA
