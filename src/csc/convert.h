// A converter: the walk over blocks of pixels. Written over Access<Layout> of csc/block_access.h or csc/pixel_access.h,
// of which one is included before. Kernel sources only.
#pragma once

#include "core/hide_origin.h"

namespace qorv::QORV_ISA {

// A formula so short that a block waits for its loads goes over two at a time.
template <class Source, class Colour, class Dest>
constexpr bool kInPairs = requires {
    Colour::kShort;
};

// Pointers to a row.
template <Layout kLayout, class Byte>
struct RowPointers {
    Byte *p[kMaxChannels] = {};

    template <class Pointer>
    [[gnu::always_inline]] explicit RowPointers(Pointer const *first) {
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) p[i] = static_cast<Byte *>(first[i]);
    }
    [[gnu::always_inline]] void advance(const int32_t *stride, ptrdiff_t rows = 1) {
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) p[i] += rows * kLayout.row_bytes(i, stride[i]);
    }
};

template <class Source, class Colour, class Dest>
void convert(const void *const *src, const int32_t *src_stride, void *const *dst, const int32_t *dst_stride,
             ptrdiff_t w, ptrdiff_t h) {
    constexpr ptrdiff_t kBlock = Access<Source>::kBlock;
    RowPointers<Source::layout, const uint8_t> from(src);
    RowPointers<Dest::layout, uint8_t> to(dst);
    const auto block = [&](ptrdiff_t x) __attribute__((always_inline)) {
        Access<Dest>::store(to.p, x, Colour::apply(Access<Source>::load(from.p, x)));
    };
    constexpr bool kPairs = kBlock > 1 && kInPairs<Source, Colour, Dest>;
    for (;;) {
        ptrdiff_t x = 0;
        for (; kPairs && x <= w - kBlocksAhead * kBlock; x += kBlocksAhead * kBlock) {
            ptrdiff_t next = x + kBlock;
            // Or the two loads of every plane become one, which takes an in-order core longer.
            if constexpr (Source::layout.count > 1) hide_origin(next);
            const auto first = Colour::apply(Access<Source>::load(from.p, x));
            const auto second = Colour::apply(Access<Source>::load(from.p, next));
            Access<Dest>::store(to.p, x, first);
            Access<Dest>::store(to.p, next, second);
        }
        for (; x <= w - kBlock; x += kBlock) block(x);
        // The rest once more as a whole block that ends with the row; what it repeats gets the same values.
        if (x < w) block(w - kBlock);
        if (--h <= 0) return;
        from.advance(src_stride);
        to.advance(dst_stride);
    }
}

}  // namespace qorv::QORV_ISA
