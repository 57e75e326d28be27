// The converters that are source layout x colour x destination layout, one line each: X(name, source, colour,
// destination). The kernel tables and the exported functions are made from this list; a test fails for a member that
// has no line in the reference.
#pragma once

#define QORV_CSC_CONVERTERS(X)                                 \
    X(yuv444_to_rgb888, Planar3, YuvToRgb, Rgb888)             \
    X(yuv444_to_rgba8888, Planar3, YuvToRgb, Rgba8888)         \
    X(yuv444_to_argb8888, Planar3, YuvToRgb, ArgbWithoutBlue)  \
    X(yuv444_to_bgra8888, Planar3, YuvToRgb, Bgra8888)         \
    X(yuv444_to_rgb565, Planar3, YuvToRgb, Rgb565)             \
    X(yuv444_to_rgb565a8, Planar3, YuvToRgb, Rgb565A8)         \
    X(yuv444_to_r8g8b8, Planar3, YuvToRgb, Planar3)            \
    X(yuv444a8_to_rgba8888, Planar4, YuvToRgb, Rgba8888)       \
    X(yuv444a8_to_argb8888, Planar4, YuvToRgb, Argb8888)       \
    X(yuv444a8_to_bgra8888, Planar4, YuvToRgb, Bgra8888)       \
    X(yuv444a8_to_rgb565a8, Planar4, YuvToRgb, Rgb565A8)       \
    X(yuv444a8_to_rgba5658, Planar4, YuvToRgb, Rgba5658)       \
    X(r8g8b8_to_yuv444, Planar3, RgbToYuv, Planar3)            \
    X(rgb888_to_yuv444, Rgb888, RgbToYuv, Planar3)             \
    X(rgb565_to_yuv444, Rgb565, RgbToYuv, Planar3)             \
    X(rgba8888_to_yuv444a8, Rgba8888, RgbToYuv, Planar4)       \
    X(r8g8b8a8_to_yuv444a8, Planar4, RgbToYuv, Planar4)        \
    X(r8g8b8_to_rgb888, Planar3, SameColour, Rgb888)           \
    X(r8g8b8_to_rgba8888, Planar3, SameColour, Rgba8888)       \
    X(r8g8b8_to_argb8888, Planar3, SameColour, Argb8888)       \
    X(r8g8b8_to_bgra8888, Planar3, SameColour, Bgra8888)       \
    X(r8g8b8_to_rgb565, Planar3, SameColour, Rgb565)           \
    X(x8y8z8_to_xyz565a8, Planar3, SameColour, Rgb565A8)       \
    X(r8g8b8a8_to_rgba8888, Planar4, SameColour, Rgba8888)     \
    X(r8g8b8a8_to_argb8888, Planar4, SameColour, Argb8888)     \
    X(r8g8b8a8_to_bgra8888, Planar4, SameColour, Bgra8888)     \
    X(r8g8b8a8_to_rgba5658, Planar4, SameColour, Rgba5658)     \
    X(x8y8z8a8_to_xyz565a8, Planar4, SameColour, Rgb565A8)     \
    X(p410_to_r10g10b10, Planar3x10, Yuv10ToRgb10, Planar3x10) \
    X(r10g10b10_to_p410, Planar3x10, Rgb10ToYuv10, Planar3x10)

// Those that scale, too: X(name, source, colour, destination). Their kernels are those of the same names above.
#define QORV_CSC_SCALING_CONVERTERS(X)                     \
    X(r8g8b8_to_rgb888, Planar3, SameColour, Rgb888)       \
    X(r8g8b8_to_rgba8888, Planar3, SameColour, Rgba8888)   \
    X(r8g8b8a8_to_rgba8888, Planar4, SameColour, Rgba8888) \
    X(yuv444_to_rgb888, Planar3, YuvToRgb, Rgb888)         \
    X(yuv444_to_rgba8888, Planar3, YuvToRgb, Rgba8888)     \
    X(yuv444a8_to_rgba8888, Planar4, YuvToRgb, Rgba8888)   \
    X(yuv444_to_rgb565, Planar3, YuvToRgb, Rgb565)         \
    X(yuv444a8_to_rgb565a8, Planar4, YuvToRgb, Rgb565A8)
