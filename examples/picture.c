/* A picture's road: made with room for motion vectors round it, drawn by a decoder, its borders expanded, converted for
 * a display, and given back. With a file name as argument the outcome is written there as a PPM picture. */
#include <qorv_skia.h>
#include <stdio.h>

enum { WIDTH = 64, HEIGHT = 48, BORDER = 16 };

/* A stand-in for the decoder: luma rises to the right, the two chroma planes to the right and downwards. */
static void decode_into(const QORV_IMGB *imgb) {
    for (int y = 0; y < imgb->h; y++) {
        for (int x = 0; x < imgb->w; x++) {
            ((uint8_t *)imgb->a[0])[y * imgb->s[0] + x] = (uint8_t)(x * 4);
            ((uint8_t *)imgb->a[1])[y * imgb->s[1] + x] = (uint8_t)(64 + x * 2);
            ((uint8_t *)imgb->a[2])[y * imgb->s[2] + x] = (uint8_t)(64 + y * 2);
        }
    }
}

static void write_ppm(const char *name, const QORV_IMGB *rgb) {
    FILE *file = fopen(name, "wb");
    if (file == NULL) return;
    fprintf(file, "P6\n%d %d\n255\n", (int)rgb->w, (int)rgb->h);
    for (int y = 0; y < rgb->h; y++) fwrite((uint8_t *)rgb->a[0] + y * rgb->s[0], 3, (size_t)rgb->w, file);
    fclose(file);
}

int main(int argc, char **argv) {
    /* Rows aligned to 32 samples, a border of 16 samples on every side of every plane. */
    const uint32_t align[4] = {QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1), 0};
    const uint32_t pad[4] = {QORV_IMGB_WORD(BORDER, BORDER), QORV_IMGB_WORD(BORDER, BORDER),
                             QORV_IMGB_WORD(BORDER, BORDER), 0};
    int32_t status;
    QORV_IMGB *yuv = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV444, 0, align, pad, NULL, NULL, &status);
    if (yuv == NULL) return printf("no picture: status %d\n", (int)status);

    decode_into(yuv);
    if (qorv_imgb_expand(yuv, pad) != QORV_OK) return 1;
    /* A motion vector may now point outside: what it finds there is the nearest sample of the picture. */
    const uint8_t *luma = yuv->a[0];
    if (luma[-BORDER * yuv->s[0] - BORDER] != luma[0]) return 1;

    /* The display holds a reference of its own, so that the decoder may let go of the picture at any time. */
    yuv->addref(yuv);
    yuv->release(yuv);

    QORV_IMGB *rgb = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_RGB888, 0, NULL, NULL, NULL, NULL, &status);
    if (rgb == NULL) return printf("no picture: status %d\n", (int)status);
    uint8_t *first = rgb->a[0];
    void *const channels[3] = {first, first + 1, first + 2};
    const int32_t strides[3] = {rgb->s[0], rgb->s[0], rgb->s[0]};
    qorv_csc_yuv444_to_rgb888((const void *const *)yuv->a, WIDTH, HEIGHT, yuv->s, 0, channels, WIDTH, HEIGHT, strides,
                              QORV_CS_RGB888);
    printf("pixel (32, 24): %d %d %d\n", first[24 * rgb->s[0] + 96], first[24 * rgb->s[0] + 97],
           first[24 * rgb->s[0] + 98]);
    if (argc > 1) write_ppm(argv[1], rgb);

    return yuv->release(yuv) + rgb->release(rgb); /* both counts reach 0 */
}
