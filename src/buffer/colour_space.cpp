#include "buffer/colour_space.h"

using namespace qorv;

namespace qorv {

namespace {

enum Scale : uint8_t { kFull, kHalf, kQuarter };

// One row for each YUV layout. Planes 1 and 2 share their geometry, plane 3 (alpha) has that of plane 0.
struct Layout {
    uint8_t cs;
    uint8_t planes;
    Scale chroma_w, chroma_h;
    uint8_t luma_bytes, chroma_bytes;  // bytes of one horizontal element
};

constexpr Layout kLayouts[] = {
    {QORV_CS_YUV400, 1, kFull, kFull, 1, 1},    {QORV_CS_YUV420, 3, kHalf, kHalf, 1, 1},
    {QORV_CS_YUV422, 3, kHalf, kFull, 1, 1},    {QORV_CS_YUV444, 3, kFull, kFull, 1, 1},
    {QORV_CS_NV12, 2, kHalf, kHalf, 1, 2},      {QORV_CS_NV21, 2, kHalf, kHalf, 1, 2},
    {QORV_CS_YUV440, 3, kFull, kHalf, 1, 1},    {QORV_CS_YUV400_16, 1, kFull, kFull, 2, 2},
    {QORV_CS_YUV411, 3, kQuarter, kFull, 1, 1}, {QORV_CS_YUVA420, 4, kHalf, kHalf, 1, 1},
    {QORV_CS_YUVA422, 4, kHalf, kFull, 1, 1},   {QORV_CS_YUVA444, 4, kFull, kFull, 1, 1},
    {QORV_CS_YUVA440, 4, kFull, kHalf, 1, 1},   {QORV_CS_P010, 3, kHalf, kHalf, 2, 2},
    {QORV_CS_P210, 3, kHalf, kFull, 2, 2},      {QORV_CS_P410, 3, kFull, kFull, 2, 2},
    {QORV_CS_YUV420_16, 3, kHalf, kHalf, 2, 2}, {QORV_CS_YUV422_16, 3, kHalf, kFull, 2, 2},
};

// half(x) = (x + 1) >> 1, quarter(x) = (x + 3) >> 2, on the value as a signed 32-bit number.
uint32_t scaled(uint32_t size, Scale scale) {
    const uint32_t round_up = (1u << scale) - 1;
    return static_cast<uint32_t>(static_cast<int32_t>(size + round_up) >> scale);
}

const Layout *find_layout(uint32_t cs) {
    for (const Layout &layout : kLayouts) {
        if (layout.cs == cs) return &layout;
    }
    return nullptr;
}

}  // namespace

uint32_t packed_rgb_bytes(uint32_t cs) {
    if (cs < 300) return 2;
    return cs >= 400 && cs < 500 ? 3 : 4;
}

}  // namespace qorv

extern "C" int32_t qorv_imgb_get_dimension(uint32_t cs, uint32_t *widths, uint32_t *heights, uint32_t *plane_count,
                                           uint32_t *units) {
    if (cs == QORV_CS_RGB888) {
        *plane_count = 1;
        units[0] = unit_word(packed_rgb_bytes(cs));
        return QORV_OK;
    }
    const Layout *layout = find_layout(cs);
    if (layout == nullptr) return QORV_ERR_UNSUPPORTED_CS;

    *plane_count = layout->planes;
    units[0] = unit_word(layout->luma_bytes);
    for (uint32_t plane = 1; plane < layout->planes; plane++) {
        const bool alpha = plane == 3;
        widths[plane] = scaled(widths[0], alpha ? kFull : layout->chroma_w);
        heights[plane] = scaled(heights[0], alpha ? kFull : layout->chroma_h);
        units[plane] = unit_word(alpha ? layout->luma_bytes : layout->chroma_bytes);
    }
    return QORV_OK;
}
