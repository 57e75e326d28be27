/* Makes a thumbnail of a picture in one call, and once more from bands of rows as a decoder delivers them. */
#include <qorv_skia.h>
#include <stdio.h>
#include <string.h>

enum { SRC_W = 160, SRC_H = 120, DST_W = 50, DST_H = 40, BAND = 16, RGB = 21 };

static uint8_t source[SRC_H][SRC_W][3], whole[DST_H][DST_W][3], banded[DST_H][DST_W][3];

static QORV_IRSZ *create(int32_t mode, void *dst) {
    const QORV_IRSZ_PARAM param = {.format = RGB,
                                   .mode = mode,
                                   .src_w = SRC_W,
                                   .src_h = SRC_H,
                                   .src_stride = SRC_W, /* strides count pixels here */
                                   .band_h = BAND,
                                   .dst_w = DST_W,
                                   .dst_h = DST_H,
                                   .dst_stride = DST_W,
                                   .dst = dst};
    int32_t status;
    QORV_IRSZ *rsz = qorv_irsz_create(&param, &status);
    if (rsz == NULL) printf("no resizer: status %d\n", (int)status);
    return rsz;
}

int main(void) {
    for (int y = 0; y < SRC_H; y++) {
        for (int x = 0; x < SRC_W; x++) {
            source[y][x][0] = (uint8_t)x;
            source[y][x][1] = (uint8_t)(2 * y);
            source[y][x][2] = (uint8_t)(x ^ y);
        }
    }

    QORV_IRSZ *rsz = create(10, whole);
    if (rsz == NULL) return 1;
    qorv_irsz(rsz, &source[0][0][0], 0, 0);
    qorv_irsz_delete(rsz); /* one for whole pictures could do the next one too */
    printf("pixel (25, 20): %d %d\n", whole[20][25][0], whole[20][25][1]);

    rsz = create(11, banded);
    if (rsz == NULL) return 1;
    for (uint32_t row = 0; row < SRC_H; row += BAND) qorv_irsz(rsz, &source[row][0][0], row, BAND);
    qorv_irsz_delete(rsz); /* one for bands serves one picture */
    return memcmp(whole, banded, sizeof whole) != 0 || memcmp(whole[0][0], source[0][0], 3) != 0;
}
