// Bilinear sampling a sample at a time: the four neighbours, the weights, one shift.
#pragma once

#include <cstdint>

namespace test {

struct BilinearAxis {
    int64_t step = 0;
    int shift = 0;

    BilinearAxis() = default;
    BilinearAxis(int64_t source, int64_t dest) {
        if (dest == 0) return;
        const int64_t ratio = source / dest;
        shift = ratio <= 2 ? 0 : ratio <= 4 ? 1 : ratio <= 8 ? 2 : ratio <= 16 ? 3 : 4;
        step = (((source - 1) >> shift) << 18) / dest;
    }
    int64_t index(int64_t i) const { return (i * step >> 18) << shift; }
    int fraction(int64_t i) const { return static_cast<int>(i * step >> 15 & 7); }
};

// The weighted sum, at most 64 x 255, at destination sample (i, j). `at(x, y)` gives a source sample; neighbours of
// weight 0 are not asked for.
template <class At>
int bilinear_sum(const BilinearAxis &x, const BilinearAxis &y, int64_t i, int64_t j, At at) {
    const int fx = x.fraction(i), fy = y.fraction(j);
    const int weights[2][2] = {{(8 - fx) * (8 - fy), fx * (8 - fy)}, {(8 - fx) * fy, fx * fy}};
    int sum = 0;
    for (int row = 0; row < 2; row++) {
        for (int column = 0; column < 2; column++) {
            if (weights[row][column] == 0) continue;
            sum += weights[row][column] *
                   at(x.index(i) + column * (int64_t{1} << x.shift), y.index(j) + row * (int64_t{1} << y.shift));
        }
    }
    return sum;
}

}  // namespace test
