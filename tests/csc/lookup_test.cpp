#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "qorv_skia.h"

namespace {

// Flat indices of the filled cells of each table.
const std::map<int, qorv_csc_fn> kToRgb{
    {0, qorv_csc_r8g8b8_to_rgb888},           {1, qorv_csc_r8g8b8_to_rgba8888},
    {2, qorv_csc_r8g8b8_to_rgb565},           {4, qorv_csc_x8y8z8_to_xyz565a8},
    {5, qorv_csc_r8g8b8_to_argb8888},         {6, qorv_csc_r8g8b8_to_bgra8888},
    {12, qorv_csc_r8g8b8a8_to_rgba8888},      {14, qorv_csc_r8g8b8a8_to_rgba8888},
    {15, qorv_csc_x8y8z8a8_to_xyz565a8},      {16, qorv_csc_r8g8b8a8_to_argb8888},
    {17, qorv_csc_r8g8b8a8_to_bgra8888},      {22, qorv_csc_yuv444_to_rgb888},
    {23, qorv_csc_yuv444_to_rgba8888},        {24, qorv_csc_yuv444_to_rgb565},
    {26, qorv_csc_yuv444_to_rgb565a8},        {27, qorv_csc_yuv444_to_argb8888},
    {28, qorv_csc_yuv444_to_bgra8888},        {30, qorv_csc_yuv444_to_r8g8b8},
    {34, qorv_csc_yuv444a8_to_rgba8888},      {36, qorv_csc_yuv444a8_to_rgba5658},
    {37, qorv_csc_yuv444a8_to_rgb565a8},      {38, qorv_csc_yuv444a8_to_argb8888},
    {39, qorv_csc_yuv444a8_to_bgra8888},      {54, qorv_csc_p410_to_r10g10b10},
    {65, qorv_csc_r10g10b10_to_p410},         {66, qorv_csc_rsz_r8g8b8_to_rgb888},
    {67, qorv_csc_rsz_r8g8b8_to_rgba8888},    {78, qorv_csc_rsz_r8g8b8a8_to_rgba8888},
    {88, qorv_csc_rsz_yuv444_to_rgb888},      {89, qorv_csc_rsz_yuv444_to_rgba8888},
    {90, qorv_csc_rsz_yuv444_to_rgb565},      {100, qorv_csc_rsz_yuv444a8_to_rgba8888},
    {103, qorv_csc_rsz_yuv444a8_to_rgb565a8},
};
const std::map<int, qorv_csc_fn> kToYuv{
    {0, qorv_csc_r8g8b8_to_yuv444},   {4, qorv_csc_r8g8b8a8_to_yuv444a8}, {6, qorv_csc_yuv444x_to_yuv444x},
    {9, qorv_csc_yuv444x_to_yuv444x}, {10, qorv_csc_yuv444x_to_yuv444x},  {12, qorv_csc_rgb565_to_yuv444},
    {17, qorv_csc_r10g10b10_to_p410}, {18, qorv_csc_rgb888_to_yuv444},    {22, qorv_csc_rgba8888_to_yuv444a8},
};

qorv_csc_fn expected_cell(const std::map<int, qorv_csc_fn> &table, int index) {
    const auto found = table.find(index);
    return found == table.end() ? nullptr : found->second;
}

template <int Rows, int Columns>
void expect_cells(const qorv_csc_fn (&table)[2][Rows][Columns], const std::map<int, qorv_csc_fn> &cells) {
    for (int i = 0; i < 2 * Rows * Columns; i++) {
        const int differ = i / (Rows * Columns), row = i / Columns % Rows, column = i % Columns;
        EXPECT_EQ(table[differ][row][column], expected_cell(cells, i))
            << (differ != 0 ? "sizes differ" : "equal sizes") << ", source row " << row << ", destination column "
            << column;
    }
}

TEST(ConverterTables, HoldTheListedCellsAndNoOther) {
    expect_cells(qorv_tbl_fn_csc_to_rgb, kToRgb);
    expect_cells(qorv_tbl_fn_csc_to_yuvplanar, kToYuv);
}

// Every pair of identifiers from 0 to 800, the status word left alone on success.
TEST(ConverterLookup, AgreesWithTheTablesForEveryPair) {
    const std::map<int, int> rgb_row{{600, 0}, {700, 1}, {13, 2}, {43, 3}, {62, 4}, {603, 5}};
    const std::map<int, int> rgb_column{{400, 0}, {500, 1}, {200, 2}, {430, 3}, {650, 4},
                                        {502, 5}, {501, 6}, {401, 7}, {600, 8}, {603, 10}};
    const std::map<int, int> yuv_row{{600, 0}, {13, 2}, {43, 3}, {200, 4}, {603, 5}, {400, 6}, {500, 7}};
    const std::map<int, int> yuv_column{{13, 0}, {43, 1}, {62, 2}};
    for (int src = -1; src <= 800; src++) {
        for (int dst = -1; dst <= 800; dst++) {
            for (const auto &[w, h] : {std::pair{8, 8}, std::pair{9, 8}, std::pair{8, 9}}) {
                const bool differ = w != 8 || h != 8;
                qorv_csc_fn expected = nullptr;
                if (rgb_row.count(src) != 0 && rgb_column.count(dst) != 0) {
                    expected = expected_cell(kToRgb, differ * 66 + rgb_row.at(src) * 11 + rgb_column.at(dst));
                } else if (yuv_row.count(src) != 0 && yuv_column.count(dst) != 0) {
                    expected = expected_cell(kToYuv, differ * 24 + yuv_row.at(src) * 3 + yuv_column.at(dst));
                }
                int32_t err = 55;
                ASSERT_EQ(qorv_imgp_get_fn_csc(8, 8, src, w, h, dst, &err), expected) << src << " to " << dst;
                ASSERT_EQ(err, expected != nullptr ? 55 : QORV_ERR_UNSUPPORTED_CS) << src << " to " << dst;
            }
        }
    }
    EXPECT_EQ(qorv_imgp_get_fn_csc(8, 8, 0, 8, 8, 400, nullptr), nullptr);
}

}  // namespace
