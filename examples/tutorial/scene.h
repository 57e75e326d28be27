/* What the steps of the tutorial look at: a striped ground, and on it a patterned square that moves by (3, 1) each
   picture. */
#pragma once
#include <qorv_skia.h>

enum { WIDTH = 160, HEIGHT = 96, SIDE = 32, PAD = 16 };

static inline uint8_t *row_of(const QORV_IMGB *picture, int plane, int y) {
    return (uint8_t *)picture->a[plane] + y * picture->s[plane];
}

static inline void draw(const QORV_IMGB *picture, int time) {
    const int left = 40 + 3 * time, top = 24 + time;
    for (int y = 0; y < HEIGHT; y++) {
        uint8_t *row = row_of(picture, 0, y);
        for (int x = 0; x < WIDTH; x++) row[x] = (uint8_t)((x + 3 * y) % 32 + 64);
        if (y < top || y >= top + SIDE) continue;
        for (int x = 0; x < SIDE; x++) row[left + x] = (uint8_t)(160 + x * (y - top) % 61);
    }
    for (int plane = 1; plane < 3; plane++)
        qorv_mset_x64a(picture->a[plane], 128, (size_t)picture->s[plane] * HEIGHT / 2);
}
