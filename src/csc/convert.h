// A converter: the walk over blocks of pixels. Written over Access<Layout> of csc/block_access.h or csc/pixel_access.h,
// of which one is included before. Kernel sources only.
#pragma once

namespace qorv::QORV_ISA {

// Pointers to a row.
template <Layout kLayout, class Byte>
struct RowPointers {
    Byte *p[kMaxChannels] = {};

    [[gnu::always_inline]] explicit RowPointers(Byte *const *first) {
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) p[i] = first[i];
    }
    [[gnu::always_inline]] void advance(const ptrdiff_t *stride, ptrdiff_t rows = 1) {
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) p[i] += rows * stride[i];
    }
};

template <class Source, class Colour, class Dest>
void convert(const uint8_t *const *src, const ptrdiff_t *src_stride, uint8_t *const *dst, const ptrdiff_t *dst_stride,
             ptrdiff_t w, ptrdiff_t h) {
    constexpr ptrdiff_t kBlock = Access<Source>::kBlock;
    RowPointers<Source::layout, const uint8_t> from(src);
    RowPointers<Dest::layout, uint8_t> to(dst);
    const auto block = [&](ptrdiff_t x) __attribute__((always_inline)) {
        Access<Dest>::store(to.p, x, Colour::apply(Access<Source>::load(from.p, x)));
    };
    for (ptrdiff_t y = 0; y < h; y++) {
        ptrdiff_t x = 0;
        for (; x <= w - kBlock; x += kBlock) block(x);
        // The rest once more as a whole block that ends with the row; what it repeats gets the same values.
        if (x < w) block(w - kBlock);
        from.advance(src_stride);
        to.advance(dst_stride);
    }
}

}  // namespace qorv::QORV_ISA
