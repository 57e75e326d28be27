#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "qorv_skia.h"

namespace {

// Chroma is ceil(W / wide) x ceil(H / high) elements of `chroma_bytes`; a fourth plane is alpha, as large as luma.
struct Row {
    uint32_t cs, planes, wide, high, luma_bytes, chroma_bytes;
};

constexpr Row kRows[] = {
    {10, 1, 1, 1, 1, 1}, {11, 3, 2, 2, 1, 1}, {12, 3, 2, 1, 1, 1}, {13, 3, 1, 1, 1, 1},  {16, 2, 2, 2, 1, 2},
    {17, 2, 2, 2, 1, 2}, {18, 3, 1, 2, 1, 1}, {20, 1, 1, 1, 2, 2}, {22, 3, 4, 1, 1, 1},  {41, 4, 2, 2, 1, 1},
    {42, 4, 2, 1, 1, 1}, {43, 4, 1, 1, 1, 1}, {44, 4, 1, 2, 1, 1}, {60, 3, 2, 2, 2, 2},  {61, 3, 2, 1, 2, 2},
    {62, 3, 1, 1, 2, 2}, {63, 3, 2, 2, 2, 2}, {64, 3, 2, 1, 2, 2}, {400, 1, 1, 1, 3, 3},
};

constexpr uint32_t kUntouched = 0xDEADBEEF;

struct Result {
    uint32_t widths[4] = {0, kUntouched, kUntouched, kUntouched};
    uint32_t heights[4] = {0, kUntouched, kUntouched, kUntouched};
    uint32_t planes = kUntouched;
    uint32_t units[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    int32_t status = 0;

    Result(uint32_t cs, uint32_t w, uint32_t h) {
        widths[0] = w;
        heights[0] = h;
        status = qorv_imgb_get_dimension(cs, widths, heights, &planes, units);
    }
};

TEST(Dimension, FollowsTheTableAndRoundsUp) {
    for (const Row &row : kRows) {
        for (auto [w, h] : {std::pair{7u, 5u}, {5u, 4u}, {8u, 9u}, {1u, 1u}, {0u, 0u}, {1920u, 1080u}}) {
            SCOPED_TRACE(testing::Message() << "cs " << row.cs << ", " << w << " x " << h);
            const Result result(row.cs, w, h);
            ASSERT_EQ(result.status, QORV_OK);
            ASSERT_EQ(result.planes, row.planes);
            for (uint32_t i = 0; i < 4; i++) {
                const bool chroma = i == 1 || i == 2;
                const bool present = i < row.planes;
                const uint32_t wide = chroma ? row.wide : 1, high = chroma ? row.high : 1;
                EXPECT_EQ(result.widths[i], present ? (w + wide - 1) / wide : kUntouched) << i;
                EXPECT_EQ(result.heights[i], present ? (h + high - 1) / high : kUntouched) << i;
                const uint32_t bytes = chroma ? row.chroma_bytes : row.luma_bytes;
                EXPECT_EQ(result.units[i], present ? bytes << 16 | 1 : kUntouched) << i;
            }
        }
    }
}

TEST(Dimension, RefusesEveryOtherIdentifierAndWritesNothing) {
    for (uint32_t cs = 0; cs < 1000; cs++) {
        if (std::any_of(std::begin(kRows), std::end(kRows), [cs](const Row &row) { return row.cs == cs; })) continue;
        const Result result(cs, 8, 8);
        EXPECT_EQ(result.status, QORV_ERR_UNSUPPORTED_CS) << cs;
        EXPECT_EQ(result.planes, kUntouched);
        EXPECT_EQ(result.units[0], kUntouched);
        EXPECT_EQ(result.widths[1], kUntouched);
    }
}

}  // namespace
