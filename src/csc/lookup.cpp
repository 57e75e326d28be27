// The two converter tables and the lookup in them.
#include "qorv_skia.h"

// Rows and columns are those of the header's table comments. [0] serves equal sizes, [1] differing ones.
extern "C" const qorv_csc_fn qorv_tbl_fn_csc_to_rgb[2][6][11] = {
    {
        {qorv_csc_r8g8b8_to_rgb888, qorv_csc_r8g8b8_to_rgba8888, qorv_csc_r8g8b8_to_rgb565, nullptr,
         qorv_csc_x8y8z8_to_xyz565a8, qorv_csc_r8g8b8_to_argb8888, qorv_csc_r8g8b8_to_bgra8888},
        // The cell of RGBA5658 holds the RGBA8888 copier: clients depend on it.
        {nullptr, qorv_csc_r8g8b8a8_to_rgba8888, nullptr, qorv_csc_r8g8b8a8_to_rgba8888, qorv_csc_x8y8z8a8_to_xyz565a8,
         qorv_csc_r8g8b8a8_to_argb8888, qorv_csc_r8g8b8a8_to_bgra8888},
        {qorv_csc_yuv444_to_rgb888, qorv_csc_yuv444_to_rgba8888, qorv_csc_yuv444_to_rgb565, nullptr,
         qorv_csc_yuv444_to_rgb565a8, qorv_csc_yuv444_to_argb8888, qorv_csc_yuv444_to_bgra8888, nullptr,
         qorv_csc_yuv444_to_r8g8b8},
        {nullptr, qorv_csc_yuv444a8_to_rgba8888, nullptr, qorv_csc_yuv444a8_to_rgba5658, qorv_csc_yuv444a8_to_rgb565a8,
         qorv_csc_yuv444a8_to_argb8888, qorv_csc_yuv444a8_to_bgra8888},
        {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
         qorv_csc_p410_to_r10g10b10},
        // Planar 10-bit RGB to itself converts to YUV, as the cell of P410 in the other table does.
        {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
         qorv_csc_r10g10b10_to_p410},
    },
    {
        {qorv_csc_rsz_r8g8b8_to_rgb888, qorv_csc_rsz_r8g8b8_to_rgba8888},
        {nullptr, qorv_csc_rsz_r8g8b8a8_to_rgba8888},
        {qorv_csc_rsz_yuv444_to_rgb888, qorv_csc_rsz_yuv444_to_rgba8888, qorv_csc_rsz_yuv444_to_rgb565},
        {nullptr, qorv_csc_rsz_yuv444a8_to_rgba8888, nullptr, nullptr, qorv_csc_rsz_yuv444a8_to_rgb565a8},
        {},
        {},
    },
};

extern "C" const qorv_csc_fn qorv_tbl_fn_csc_to_yuvplanar[2][8][3] = {
    {
        {qorv_csc_r8g8b8_to_yuv444},
        {nullptr, qorv_csc_r8g8b8a8_to_yuv444a8},
        {qorv_csc_yuv444x_to_yuv444x},
        {qorv_csc_yuv444x_to_yuv444x, qorv_csc_yuv444x_to_yuv444x},
        {qorv_csc_rgb565_to_yuv444},
        {nullptr, nullptr, qorv_csc_r10g10b10_to_p410},
        {qorv_csc_rgb888_to_yuv444},
        {nullptr, qorv_csc_rgba8888_to_yuv444a8},
    },
    {},
};

namespace {

constexpr int32_t kNone = -1;  // in a list: no colour space stands here, or none that the lookup finds

// Rows and columns of the tables, in their order.
constexpr int32_t kRgbSources[] = {QORV_CS_R8G8B8,  QORV_CS_R8G8B8A8, QORV_CS_YUV444,
                                   QORV_CS_YUVA444, QORV_CS_P410,     QORV_CS_R10G10B10};
constexpr int32_t kRgbDests[] = {QORV_CS_RGB888,   QORV_CS_RGBA8888, QORV_CS_RGB565, QORV_CS_RGBA5658, QORV_CS_RGB565A8,
                                 QORV_CS_ARGB8888, QORV_CS_BGRA8888, QORV_CS_BGR888, QORV_CS_R8G8B8,   kNone,
                                 QORV_CS_R10G10B10};
// Row 1, planar RGBA, is reached by those alone who index the table themselves.
constexpr int32_t kYuvSources[] = {QORV_CS_R8G8B8,    kNone,          QORV_CS_YUV444,  QORV_CS_YUVA444, QORV_CS_RGB565,
                                   QORV_CS_R10G10B10, QORV_CS_RGB888, QORV_CS_RGBA8888};
constexpr int32_t kYuvDests[] = {QORV_CS_YUV444, QORV_CS_YUVA444, QORV_CS_P410};

// The place of a colour space in a list, or -1.
template <int N>
int find(const int32_t (&list)[N], int32_t cs) {
    for (int i = 0; i < N; i++) {
        if (list[i] == cs && cs != kNone) return i;
    }
    return -1;
}

template <int Rows, int Columns>
qorv_csc_fn cell(const qorv_csc_fn (&table)[Rows][Columns], int row, int column) {
    return row < 0 || column < 0 ? nullptr : table[row][column];
}

}  // namespace

extern "C" qorv_csc_fn qorv_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w, int32_t dst_h,
                                            int32_t dst_cs, int32_t *err) {
    const bool differ = src_w != dst_w || src_h != dst_h;
    qorv_csc_fn found = nullptr;
    if (dst_cs >= 200 && dst_cs <= 799) {
        found = cell(qorv_tbl_fn_csc_to_rgb[differ], find(kRgbSources, src_cs), find(kRgbDests, dst_cs));
    } else if (dst_cs >= 10 && dst_cs <= 99) {
        found = cell(qorv_tbl_fn_csc_to_yuvplanar[differ], find(kYuvSources, src_cs), find(kYuvDests, dst_cs));
    }
    if (found == nullptr && err != nullptr) *err = QORV_ERR_UNSUPPORTED_CS;
    return found;
}
