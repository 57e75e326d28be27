// A converter: the walk over blocks of pixels. Written over Access<Layout> of csc/block_access.h or csc/pixel_access.h,
// of which one is included before. Kernel sources only.
#pragma once

namespace qorv::QORV_ISA {

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
    // A formula so short that a block waits for its loads goes over two at a time.
    constexpr bool kInPairs = kBlock > 1 && requires {
        Colour::kShort;
    };
    for (;;) {
        ptrdiff_t x = 0;
        for (; kInPairs && x <= w - kBlocksAhead * kBlock; x += kBlocksAhead * kBlock) {
            const auto first = Colour::apply(Access<Source>::load(from.p, x));
            const auto second = Colour::apply(Access<Source>::load(from.p, x + kBlock));
            Access<Dest>::store(to.p, x, first);
            Access<Dest>::store(to.p, x + kBlock, second);
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
