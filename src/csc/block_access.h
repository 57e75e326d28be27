// Reading and writing one block of pixels in each layout. Kernel sources only.
#pragma once

#include "csc/block.h"
// The primitives come first.
#include "csc/colours.h"
#include "csc/layouts.h"
#include "resize/words_565.h"

namespace qorv::QORV_ISA {

// Access<Layout>::load and ::store handle the block of kBlock pixels at pixel x of the rows that `p` points to. Planes
// without alpha give opaque pixels.
template <class Layout>
struct Access;

struct ByteBlock {
    static constexpr ptrdiff_t kBlock = kVectorBytes;  // one vector of bytes a channel
};

template <int Channels>
struct PlanarAccess : ByteBlock {
    [[gnu::always_inline]] static Pixels load(const uint8_t *const *p, ptrdiff_t x) {
        Pixels block = {};
#pragma GCC unroll 4
        for (int i = 0; i < Channels; i++) block.c[i] = qorv::QORV_ISA::load<U8>(p[i] + x);
        if (Channels == 3) block.c[3] = splat<U8>(kOpaque);
        return block;
    }
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
#pragma GCC unroll 4
        for (int i = 0; i < Channels; i++) qorv::QORV_ISA::store(p[i] + x, block.c[i]);
    }
};
template <>
struct Access<Planar3> : PlanarAccess<3> {};
template <>
struct Access<Planar4> : PlanarAccess<4> {};
template <>
struct Access<BytePlane> : PlanarAccess<1> {};

template <class Layout>
struct Interleaved3Access : ByteBlock {
    static constexpr const uint8_t (&kOrder)[3] = Layout::order;
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
        store_interleaved3(p[0] + 3 * x, block.c[kOrder[0]], block.c[kOrder[1]], block.c[kOrder[2]]);
    }
};
template <>
struct Access<Rgb888> : Interleaved3Access<Rgb888> {
    [[gnu::always_inline]] static PackedPixels load(const uint8_t *const *p, ptrdiff_t x) {
        return load_packed3(p[0] + 3 * x);
    }
};
template <>
struct Access<Bgr888> : Interleaved3Access<Bgr888> {};

template <class Layout>
struct Interleaved4Access : ByteBlock {
    static constexpr const uint8_t (&kOrder)[4] = Layout::order;
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
        store_interleaved4(p[0] + 4 * x, block.c[kOrder[0]], block.c[kOrder[1]], block.c[kOrder[2]],
                           block.c[kOrder[3]]);
    }
#ifdef QORV_SIMD_NEON
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const CopiedPixels &block) {
        store_copied4(p[0] + 4 * x, block.c[kOrder[0]], block.c[kOrder[1]], block.c[kOrder[2]], block.c[kOrder[3]]);
    }
#endif
};
template <>
struct Access<Rgba8888> : Interleaved4Access<Rgba8888> {
    [[gnu::always_inline]] static PackedPixels load(const uint8_t *const *p, ptrdiff_t x) {
        return load_packed4(p[0] + 4 * x);
    }
};
template <>
struct Access<Bgra8888> : Interleaved4Access<Bgra8888> {};
template <>
struct Access<Argb8888> : Interleaved4Access<Argb8888> {};

template <>
struct Access<ArgbWithoutBlue> {
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
        qorv::QORV_ISA::store(p[1] + x, block.c[0]);
        qorv::QORV_ISA::store(p[2] + x, block.c[1]);
        qorv::QORV_ISA::store(p[3] + x, splat<U8>(kOpaque));
    }
};

template <>
struct Access<Rgb565> : ByteBlock {
    [[gnu::always_inline]] static PackedPixels load(const uint8_t *const *p, ptrdiff_t x) {
        return load_packed565(p[0] + 2 * x);
    }
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
        U8 low = {}, high = {};
        pack_565(block.c[0], block.c[1], block.c[2], low, high);
        store_interleaved2(p[0] + 2 * x, low, high);
    }
};

template <>
struct Access<Rgb565A8> {
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &block) {
        Access<Rgb565>::store(p, x, block);
        qorv::QORV_ISA::store(p[1] + x, block.c[3]);
    }
};
template <>
struct Access<Rgba5658> : Access<Rgb565A8> {};

template <>
struct Access<Planar3x10> {
    static constexpr ptrdiff_t kBlock = kVectorBytes / 2;
    [[gnu::always_inline]] static DeepPixels load(const uint8_t *const *p, ptrdiff_t x) {
        DeepPixels block;
#pragma GCC unroll 4
        for (int i = 0; i < 3; i++) block.c[i] = qorv::QORV_ISA::load<U16>(p[i] + 2 * x);
        return block;
    }
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const DeepPixels &block) {
#pragma GCC unroll 4
        for (int i = 0; i < 3; i++) qorv::QORV_ISA::store(p[i] + 2 * x, block.c[i]);
    }
};

template <>
struct Access<WordPlane> : ByteBlock {
    [[gnu::always_inline]] static WordPair load(const uint8_t *const *p, ptrdiff_t x) {
        return {qorv::QORV_ISA::load<U16>(p[0] + 2 * x), qorv::QORV_ISA::load<U16>(p[0] + 2 * x + kVectorBytes)};
    }
};

}  // namespace qorv::QORV_ISA
