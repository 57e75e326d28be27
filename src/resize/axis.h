// The step arithmetic of bilinear sampling, the same for rows and columns.
#pragma once

#include <stdint.h>

namespace qorv {

constexpr int kPositionBits = 18;               // fraction bits of a position
constexpr int kEighthBits = kPositionBits - 3;  // bits below the weights' grid of eighths

// The weight of the sample behind a position, in eighths.
[[gnu::always_inline]] constexpr int eighths_at(int64_t position) {
    return static_cast<int>(position >> kEighthBits & 7);
}

// One direction of a picture. Of the source only every (1 << shift)-th sample is looked at, from the first on;
// positions and steps count those.
struct Axis {
    int64_t step;  // from one destination sample to the next, kPositionBits fraction bits
    int shift;
};

// The axis from `source` to `dest` samples: from the first source sample up to just short of the last. With `dest` 0
// the step is 0.
Axis axis_between(int32_t source, int32_t dest);

}  // namespace qorv
