// The block metrics as plain loops, written from their definitions, and every exported member beside its plain loop.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "core/isa.h"
#include "metric/metric_kernels.h"
#include "qorv_skia.h"

namespace test {

// A magnitude of a 16-bit difference: two off beyond 32768 when odd.
inline int64_t magnitude(int64_t d) {
    const int64_t error = std::abs(d) > 32768 && d % 2 != 0 ? (d > 0 ? -2 : 2) : 0;
    return std::abs(d) + error;
}

// Sum of the magnitudes of a Walsh-Hadamard transform, by its matrix: the sign of value (y, x) in coefficient (v, u) is
// the parity of the bits that y and v, and x and u, have in common.
inline uint64_t hadamard(const std::vector<int64_t> &residual, unsigned size) {
    uint64_t sum = 0;
    for (unsigned k = 0; k < size * size; k++) {
        int64_t coefficient = 0;
        for (unsigned i = 0; i < size * size; i++) {
            coefficient += std::popcount(k & i) % 2 != 0 ? -residual[i] : residual[i];
        }
        sum += static_cast<uint64_t>(std::abs(coefficient));
    }
    return sum;
}

template <class A, class B>
std::vector<int64_t> residual(int w, int h, const A *a, const B *b, int64_t stride_a, int64_t stride_b) {
    std::vector<int64_t> values;
    for (int y = 0; y < h; y++) {
        for (int x = 0; x < w; x++) values.push_back(int64_t{a[y * stride_a + x]} - b[y * stride_b + x]);
    }
    return values;
}

template <class A, class B>
uint32_t plain_sad(int w, int h, const A *a, const B *b, int64_t stride_a, int64_t stride_b) {
    uint64_t sum = 0;
    for (int64_t d : residual(w, h, a, b, stride_a, stride_b)) sum += static_cast<uint64_t>(magnitude(d));
    return static_cast<uint32_t>(sum);
}

template <class A, class B>
uint32_t plain_ssd(int w, int h, const A *a, const B *b, int64_t stride_a, int64_t stride_b) {
    uint64_t sum = 0;
    for (int64_t d : residual(w, h, a, b, stride_a, stride_b))
        sum += static_cast<uint64_t>(magnitude(d) * magnitude(d));
    return static_cast<uint32_t>(sum);
}

// The 4x4 tiles of an area, or one 8x8 block.
template <class A, class B>
uint32_t plain_satd(int w, int h, const A *a, const B *b, int64_t stride_a, int64_t stride_b) {
    uint64_t sum = 0;
    for (int y = 0; y < h; y += 4) {
        for (int x = 0; x < w; x += 4) {
            auto tile = residual(4, 4, a + y * stride_a + x, b + y * stride_b + x, stride_a, stride_b);
            for (int64_t &d : tile) d = static_cast<int16_t>(d);
            sum += hadamard(tile, 4) >> 1;
        }
    }
    return static_cast<uint32_t>(sum);
}

template <class A, class B>
uint32_t plain_satd8x8(int, int, const A *a, const B *b, int64_t stride_a, int64_t stride_b) {
    return static_cast<uint32_t>((hadamard(residual(8, 8, a, b, stride_a, stride_b), 8) + 2) >> 2);
}

template <class A, class B>
void plain_diff(int w, int h, const A *a, const B *b, int64_t stride_a, int64_t stride_b, int64_t stride_out,
                int16_t *out) {
    for (int y = 0; y < h; y++) {
        for (int x = 0; x < w; x++) {
            out[y * stride_out + x] = static_cast<int16_t>(a[y * stride_a + x] - b[y * stride_b + x]);
        }
    }
}

struct SampleType {
    int bytes;
    int32_t min, max;
};
template <class T>
constexpr SampleType kSampleType = {sizeof(T), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};

// A member without its types: in the kernel set that is in use when it runs, as it is exported, and as a plain loop.
// w and h are 0 for one that is given them.
template <class Function>
struct Member {
    std::string name;
    int w, h;
    SampleType a, b;
    std::function<Function> run, exported, expected;
};
using Cost = Member<uint32_t(int w, int h, const void *a, const void *b, int32_t stride_a, int32_t stride_b)>;
using Diff = Member<void(int w, int h, const void *a, const void *b, int32_t stride_a, int32_t stride_b,
                         int32_t stride_out, int16_t *out)>;

// A member that is called with the sample types A and B, as run(w, h, a, b, strides...).
template <class Member, class A, class B>
Member erased(const char *name, int w, int h, auto run, auto exported, auto plain) {
    const auto call = [](auto f) {
        return [f](int cw, int ch, const void *a, const void *b, auto... more) {
            return f(cw, ch, static_cast<const A *>(a), static_cast<const B *>(b), more...);
        };
    };
    return {name, w, h, kSampleType<A>, kSampleType<B>, call(run), call(exported), call(plain)};
}

template <class A, class B>
Cost cost(const std::string &name, int w, int h, auto run, auto exported) {
    const auto starts_with = [&](const char *prefix) { return name.rfind(prefix, 0) == 0; };
    auto plain = starts_with("sad")       ? plain_sad<A, B>
                 : starts_with("ssd")     ? plain_ssd<A, B>
                 : starts_with("satd8x8") ? plain_satd8x8<A, B>
                                          : plain_satd<A, B>;
    return erased<Cost, A, B>(name.c_str(), w, h, run, exported, plain);
}

template <class A, class B>
Diff diff(const char *name, int w, int h, auto run, auto exported) {
    return erased<Diff, A, B>(name, w, h, run, exported, plain_diff<A, B>);
}

// Calls of a fixed size leave out the size.
#define QORV_FIXED(call) [](int, int, auto... args) { return call(args...); }
#define QORV_BLOCK(kind, family, w, h, suffix, A, B)                                                      \
    kind<A, B>(#family #w "x" #h #suffix, w, h, QORV_FIXED(qorv::active.metric->family##w##x##h##suffix), \
               QORV_FIXED(qorv_##family##w##x##h##suffix)),
#define QORV_AREA(kind, name, T) \
    kind<T, T>(                  \
        #name, 0, 0, [](auto... args) { return qorv::active.metric->name(args...); }, qorv_##name),

inline const std::vector<Cost> &costs() {
#define QORV_SAD(...) QORV_BLOCK(cost, sad, __VA_ARGS__)
#define QORV_SATD(...) QORV_BLOCK(cost, satd, __VA_ARGS__)
#define QORV_AREA_COST(name, T) QORV_AREA(cost, name, T)
    static const std::vector<Cost> members = {QORV_SAD_BLOCKS(QORV_SAD) QORV_SATD_BLOCKS(QORV_SATD)
                                                  QORV_AREA_COSTS(QORV_AREA_COST)};
#undef QORV_SAD
#undef QORV_SATD
#undef QORV_AREA_COST
    return members;
}

inline const std::vector<Diff> &diffs() {
#define QORV_DIFF(...) QORV_BLOCK(diff, diff, __VA_ARGS__)
#define QORV_AREA_DIFF(name, T) QORV_AREA(diff, name, T)
    static const std::vector<Diff> members = {QORV_DIFF_BLOCKS(QORV_DIFF) QORV_AREA_DIFFS(QORV_AREA_DIFF)};
#undef QORV_DIFF
#undef QORV_AREA_DIFF
    return members;
}

#undef QORV_FIXED
#undef QORV_BLOCK
#undef QORV_AREA

}  // namespace test
