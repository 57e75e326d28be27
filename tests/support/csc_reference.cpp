#include "support/csc_reference.h"

#include <algorithm>
#include <cstring>

#include "support/bilinear_reference.h"

namespace test {

namespace {

std::vector<CscPointer> pointers(const char *what, int step) {
    std::vector<CscPointer> list;
    for (; *what != 0; what++) {
        const bool word = *what == 'W' || (*what >= 'a' && *what <= 'z');
        list.push_back({*what, word ? 2 : 1, word ? 2 : step});
    }
    return list;
}

CscCase make(const char *name, qorv_csc_fn fn, const char *src, int src_step, const char *dst, int dst_step) {
    CscCase c{name, fn, false, false, false, pointers(src, src_step), pointers(dst, dst_step)};
    c.to_rgb = strpbrk(src, "Yy") != nullptr;
    c.to_yuv = strpbrk(dst, "Yy") != nullptr;
    c.deep = c.src[0].what >= 'a';
    return c;
}

uint8_t clamp8(int value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

// The samples of a pixel by letter.
struct Pixel {
    int r = 0, g = 0, b = 0, a = 255, y = 0, u = 0, v = 0;

    int &operator[](char what) {
        switch (what >= 'a' ? what - 'a' + 'A' : what) {
            case 'R':
                return r;
            case 'G':
                return g;
            case 'B':
                return b;
            case 'A':
                return a;
            case 'Y':
                return y;
            case 'U':
                return u;
            default:
                return v;
        }
    }
    void set_word(uint16_t word) {
        r = (word >> 8) & 0xF8;
        g = (word >> 3) & 0xFC;
        b = (word & 0x1F) << 3;
    }
    uint16_t word() const { return static_cast<uint16_t>(((r << 8) & 0xF800) | ((g << 3) & 0x07E0) | (b >> 3)); }
    void to_rgb() {
        const int cu = u - 128, cv = v - 128;
        r = clamp8(y + ((cv * 359 + 128) >> 8));
        g = clamp8(y - ((cv * 183 + cu * 88 + 128) >> 8));
        b = clamp8(y + ((cu * 454 + 128) >> 8));
    }
    void to_yuv() {
        const auto biased = [](int x) { return x >= -128 && x <= 127 ? x + 128 : 255; };
        y = (77 * r + 150 * g + 29 * b + 128) >> 8;
        u = biased(((-43 * r - 85 * g + 128 * b) * 256 + 32768) >> 16);
        v = biased(((128 * r - 107 * g - 21 * b) * 256 + 32768) >> 16);
    }
    void to_rgb10() {
        const int cu = u - 512, cv = v - 512;
        r = std::clamp(y + ((cv * 1436 + 512) >> 10), 0, 1023);
        g = std::clamp(y - ((cv * 732 + cu * 352 + 512) >> 10), 0, 1023);
        b = std::clamp(y + ((cu * 1816 + 512) >> 10), 0, 1023);
    }
    void to_yuv10() {
        const auto biased = [](int x) { return x < -512 ? 0 : std::min(x, 1023) + 512; };
        y = std::min((308 * r + 600 * g + 116 * b + 512) >> 10, 1023);
        u = biased((-172 * r - 340 * g + 512 * b + 512) >> 10);
        v = biased((512 * r - 428 * g - 84 * b + 512) >> 10);
    }
};

uint16_t read_word(const uint8_t *p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

void write_word(uint8_t *p, int word) {
    p[0] = static_cast<uint8_t>(word);
    p[1] = static_cast<uint8_t>(word >> 8);
}

}  // namespace

const std::vector<CscCase> &csc_cases() {
#define CASE(name, ...) make(#name, qorv_csc_##name, __VA_ARGS__)
    static const std::vector<CscCase> cases{
        CASE(yuv444_to_rgb888, "YUV", 1, "RGB", 3),       CASE(yuv444_to_rgba8888, "YUV", 1, "RGB1", 4),
        CASE(yuv444_to_argb8888, "YUV", 1, " RG1", 4),    CASE(yuv444_to_bgra8888, "YUV", 1, "BGR1", 4),
        CASE(yuv444_to_rgb565, "YUV", 1, "W", 2),         CASE(yuv444_to_rgb565a8, "YUV", 1, "W1", 1),
        CASE(yuv444_to_r8g8b8, "YUV", 1, "RGB", 1),       CASE(yuv444a8_to_rgba8888, "YUVA", 1, "RGBA", 4),
        CASE(yuv444a8_to_argb8888, "YUVA", 1, "ARGB", 4), CASE(yuv444a8_to_bgra8888, "YUVA", 1, "BGRA", 4),
        CASE(yuv444a8_to_rgb565a8, "YUVA", 1, "WA", 1),   CASE(yuv444a8_to_rgba5658, "YUVA", 1, "WA", 3),
        CASE(r8g8b8_to_yuv444, "RGB", 1, "YUV", 1),       CASE(rgb888_to_yuv444, "RGB", 3, "YUV", 1),
        CASE(rgb565_to_yuv444, "W", 2, "YUV", 1),         CASE(rgba8888_to_yuv444a8, "RGBA", 4, "YUVA", 1),
        CASE(r8g8b8a8_to_yuv444a8, "RGBA", 1, "YUVA", 1), CASE(r8g8b8_to_rgb888, "RGB", 1, "RGB", 3),
        CASE(r8g8b8_to_rgba8888, "RGB", 1, "RGB1", 4),    CASE(r8g8b8_to_argb8888, "RGB", 1, "1RGB", 4),
        CASE(r8g8b8_to_bgra8888, "RGB", 1, "BGR1", 4),    CASE(r8g8b8_to_rgb565, "RGB", 1, "W", 2),
        CASE(x8y8z8_to_xyz565a8, "RGB", 1, "W1", 1),      CASE(r8g8b8a8_to_rgba8888, "RGBA", 1, "RGBA", 4),
        CASE(r8g8b8a8_to_argb8888, "RGBA", 1, "ARGB", 4), CASE(r8g8b8a8_to_bgra8888, "RGBA", 1, "BGRA", 4),
        CASE(r8g8b8a8_to_rgba5658, "RGBA", 1, "WA", 3),   CASE(x8y8z8a8_to_xyz565a8, "RGBA", 1, "WA", 1),
        CASE(p410_to_r10g10b10, "yuv", 2, "rgb", 2),      CASE(r10g10b10_to_p410, "rgb", 2, "yuv", 2),
    };
    return cases;
}

const std::vector<CscScalingCase> &csc_scaling_cases() {
    static const std::vector<CscScalingCase> cases = [] {
        std::vector<CscScalingCase> list;
        const auto add = [&](const char *name, qorv_csc_fn fn) {
            for (const CscCase &c : csc_cases()) {
                if (strcmp(c.name, name) == 0) list.push_back({name, fn, &c});
            }
        };
#define ADD(name) add(#name, qorv_csc_rsz_##name)
        ADD(r8g8b8_to_rgb888);
        ADD(r8g8b8_to_rgba8888);
        ADD(r8g8b8a8_to_rgba8888);
        ADD(yuv444_to_rgb888);
        ADD(yuv444_to_rgba8888);
        ADD(yuv444a8_to_rgba8888);
        ADD(yuv444_to_rgb565);
        ADD(yuv444a8_to_rgb565a8);
        return list;
    }();
    return cases;
}

namespace {

int64_t row_offset(const CscCase &c, const CscPointer &p, int64_t y, int32_t stride) {
    if (c.deep) return y * stride * 2;
    return y * (p.what == 'W' ? (stride >> 1) * int64_t{2} : stride);
}

// Converts a pixel and writes it at (x, y).
void write_pixel(const CscCase &c, Pixel pixel, void *const *dst, const int32_t *dst_stride, int32_t x, int32_t y) {
    if (c.to_rgb) c.deep ? pixel.to_rgb10() : pixel.to_rgb();
    if (c.to_yuv) c.deep ? pixel.to_yuv10() : pixel.to_yuv();
    for (size_t k = 0; k < c.dst.size(); k++) {
        const CscPointer &p = c.dst[k];
        if (p.what == ' ') continue;
        auto *to = static_cast<uint8_t *>(dst[k]) + row_offset(c, p, y, dst_stride[k]) + x * p.step;
        if (p.bytes == 2) {
            write_word(to, c.deep ? pixel[p.what] : pixel.word());
        } else {
            *to = p.what == '1' ? 255 : static_cast<uint8_t>(pixel[p.what]);
        }
    }
}

}  // namespace

void csc_reference(const CscCase &c, const void *const *src, int32_t w, int32_t h, const int32_t *src_stride,
                   void *const *dst, const int32_t *dst_stride) {
    for (int32_t y = 0; y < h; y++) {
        for (int32_t x = 0; x < w; x++) {
            Pixel pixel;
            for (size_t k = 0; k < c.src.size(); k++) {
                const CscPointer &p = c.src[k];
                const auto *from =
                    static_cast<const uint8_t *>(src[k]) + row_offset(c, p, y, src_stride[k]) + x * p.step;
                if (p.what == 'W') {
                    pixel.set_word(read_word(from));
                } else {
                    pixel[p.what] = c.deep ? read_word(from) : *from;
                }
            }
            write_pixel(c, pixel, dst, dst_stride, x, y);
        }
    }
}

void csc_scaling_reference(const CscCase &c, const void *const *src, int32_t src_w, int32_t src_h,
                           const int32_t *src_stride, void *const *dst, int32_t dst_w, int32_t dst_h,
                           const int32_t *dst_stride) {
    if (src_w < 1 || src_h < 1) return;
    const BilinearAxis x_axis(src_w, dst_w), y_axis(src_h, dst_h);
    for (int32_t y = 0; y < dst_h; y++) {
        for (int32_t x = 0; x < dst_w; x++) {
            Pixel pixel;
            for (size_t k = 0; k < c.src.size(); k++) {
                pixel[c.src[k].what] =
                    bilinear_sum(x_axis, y_axis, x, y,
                                 [&](int64_t column, int64_t row) {
                                     return static_cast<const uint8_t *>(src[k])[row * src_stride[k] + column];
                                 }) >>
                    6;
            }
            write_pixel(c, pixel, dst, dst_stride, x, y);
        }
    }
}

}  // namespace test
