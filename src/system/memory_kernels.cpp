#include "system/memory_kernels.h"

#include "core/hide_origin.h"
#include "core/isa.h"
#include "core/simd.h"
#include "qorv_skia.h"

namespace qorv::QORV_ISA {

namespace {

// By the vector's own type: of a copy of its bytes g++ makes one of two general registers.
template <class V>
[[gnu::always_inline]] inline void store_vector(uint8_t *p, V v) {
    struct [[gnu::packed, gnu::may_alias]] Anywhere {
        V v;
    };
    reinterpret_cast<Anywhere *>(p)->v = v;
}

// Fills of one vector or two, overlapping in the middle.
template <class V>
[[gnu::always_inline]] inline void fill_ends(uint8_t *dst, V v, uint8_t *end) {
    store_vector(dst, v);
    store_vector(end - sizeof(V), v);
}

// Between the first and the last vector the stores are aligned: those that cross a cache line take several times as
// long.
template <class V>
[[gnu::always_inline]] inline void fill_between(uint8_t *dst, uint16_t value, V ends, uint8_t *end) {
    constexpr ptrdiff_t kStep = sizeof(V);
    const ptrdiff_t head = kStep - static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(dst) % sizeof(V));
    const V body = head % 2 == 0 ? ends : splat<V>(value << 8 | value >> 8);
    for (dst += head; dst < end - 4 * kStep; dst += 4 * kStep) {
        for (int i = 0; i < 4; i++) store_vector(dst + i * kStep, body);
    }
    for (; dst < end - kStep; dst += kStep) store_vector(dst, body);
}

// Fills of at least a vector. Up to eight vectors are stored from both ends, overlapping in the middle.
template <class V>
[[gnu::always_inline]] inline void fill_vectors(uint8_t *dst, uint16_t value, uint8_t *end) {
    constexpr ptrdiff_t kStep = sizeof(V);
    const ptrdiff_t bytes = end - dst;
    const V ends = splat<V>(value);
    fill_ends(dst, ends, end);
    if (bytes <= 2 * kStep) return;
    if (bytes > 8 * kStep) return fill_between(dst, value, ends, end);
    fill_ends(dst + kStep, ends, end - kStep);
    if (bytes <= 4 * kStep) return;
    fill_ends(dst + 2 * kStep, ends, end - 2 * kStep);
    fill_ends(dst + 3 * kStep, ends, end - 3 * kStep);
}

// Bytes that are only copied: a compiler would take them through general registers, or call memset.
template <class V>
[[gnu::always_inline]] inline V only_copied(V v) {
#ifndef QORV_SIMD_PLAIN
    if constexpr (sizeof(V) >= 16) hide_origin(v);
#endif
    return v;
}

template <int Bytes>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_piece(const uint8_t *src) {
#ifdef QORV_SIMD_NEON
    if constexpr (Bytes == 16) return load_unscaled<Vec<uint8_t, Bytes>>(src);
#endif
    return only_copied(load<Vec<uint8_t, Bytes>>(src));
}

template <class V>
[[gnu::always_inline]] inline void store_piece(uint8_t *dst, const V &piece) {
#ifdef QORV_SIMD_NEON
    if constexpr (sizeof piece == 16) return store_alone(dst, piece);
#endif
    store(dst, piece);
}

#ifdef QORV_SIMD_NEON
constexpr int kMostBytes = 64;

template <int Bytes>
requires(Bytes == 32) [[gnu::always_inline]] inline uint8x16x2_t load_piece(const uint8_t *src) {
    return vld1q_u8_x2(src);
}

[[gnu::always_inline]] inline void store_piece(uint8_t *dst, const uint8x16x2_t &piece) {
    vst1q_u8_x2(dst, piece);
}

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
    int piece = kMostBytes;
    while (piece > bytes) piece /= 2;
    return piece;
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
    constexpr int kTogether = Bytes == 16 ? 4 : 2;
    // The rows that are left over first: behind the loop its pointers would have to be there.
    for (; rows % kTogether != 0; rows--, from += src_stride, to += dst_stride) {
        copy_together<Bytes, 1>(to, from, dst_stride, src_stride);
    }
    ptrdiff_t src_step = kTogether * src_stride;
    hide_origin(src_step);  // clang would add row by row, each addition waiting for the one before it
    for (rows /= kTogether; rows > 0; rows--, from += src_step, to += kTogether * dst_stride) {
        copy_together<Bytes, kTogether>(to, from, dst_stride, src_stride);
    }
}

// The copiers of the widths from kBlockWidths[Place] on, in samples of `Bytes` bytes.
template <int Bytes, int Place = 0>
constexpr void list_copiers(CopyRows *copiers) {
    copiers[Place] = copy_rows<Bytes * kBlockWidths[Place]>;
    if constexpr (Place + 1 < kBlockWidthCount) list_copiers<Bytes, Place + 1>(copiers);
}

}  // namespace

}  // namespace qorv::QORV_ISA

// Where the build has one set, its kernel is the exported function itself, without a jump through a table.
#ifdef QORV_ONLY_SET
#define QORV_KERNEL(member) qorv_##member
using namespace qorv;
using namespace qorv::QORV_ISA;
#else
#define QORV_KERNEL(member) member
namespace qorv::QORV_ISA {
namespace {
#endif

void QORV_KERNEL(mset16)(void *dst, uint16_t value, int32_t n) {
    uint8_t *bytes = static_cast<uint8_t *>(dst), *end = bytes + 2 * ptrdiff_t{n};
    if (n >= kVectorBytes / 2) return fill_vectors<U16>(bytes, value, end);
    if (n >= 8) return fill_ends(bytes, splat<Vec<uint16_t, 16>>(value), end);
    if (n >= 4) return fill_ends(bytes, splat<Vec<uint16_t, 8>>(value), end);
    for (int32_t i = 0; i < n; i++) memcpy(bytes + 2 * i, &value, 2);
}

#ifdef QORV_ONLY_SET
// Where there is a choice of sets, the C library's own choice is as good.
void qorv_mset_x128(void *dst, int32_t value, int32_t n) {
    constexpr int kMost = 1024;  // of more, the C library has them sooner
    if (n > kMost) {
        memset(dst, value, whole_pieces(n));
        return;
    }
    const U8 all = only_copied(splat<U8>(value));
    for (uint8_t *to = static_cast<uint8_t *>(dst);; to += kFillPiece, n -= kFillPiece) {
#pragma GCC unroll 8
        for (int i = 0; i < kFillPiece; i += kVectorBytes) store_vector(to + i, all);
        if (n <= kFillPiece) return;
    }
}
#endif

#ifndef QORV_ONLY_SET
}  // namespace
}  // namespace qorv::QORV_ISA
#endif

namespace qorv::QORV_ISA {

namespace {

constexpr MemoryKernels list_kernels() {
    MemoryKernels kernels = {QORV_KERNEL(mset16), {}};
    list_copiers<1>(kernels.copy_rows[0]);
    list_copiers<2>(kernels.copy_rows[1]);
    return kernels;
}

}  // namespace

constinit const MemoryKernels memory_kernels = list_kernels();

}  // namespace qorv::QORV_ISA
