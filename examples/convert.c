/* Asks for a converter by colour spaces, hands interleaved channels over, and converts there and back. */
#include <qorv_skia.h>
#include <stdio.h>

enum { WIDTH = 4, HEIGHT = 1 };

int main(void) {
    /* Red, green, blue and white as B, G, R, A bytes: BGRA8888 names the order in memory. */
    uint8_t yuv[3][WIDTH] = {{76, 149, 29, 255}, {85, 43, 255, 128}, {255, 21, 107, 128}};
    const void *const planes[3] = {yuv[0], yuv[1], yuv[2]};
    const int32_t plane_strides[3] = {WIDTH, WIDTH, WIDTH};
    uint8_t bgra[WIDTH * 4];
    void *const channels[4] = {bgra, bgra + 1, bgra + 2, bgra + 3}; /* one pointer a channel, in the name's order */
    const int32_t channel_strides[4] = {sizeof bgra, sizeof bgra, sizeof bgra, sizeof bgra};

    int32_t error = QORV_OK;
    qorv_csc_fn convert = qorv_imgp_get_fn_csc(WIDTH, HEIGHT, QORV_CS_YUV444, WIDTH, HEIGHT, QORV_CS_BGRA8888, &error);
    if (convert == NULL) return printf("no such converter: %d\n", (int)error);
    convert(planes, WIDTH, HEIGHT, plane_strides, 0, channels, WIDTH, HEIGHT, channel_strides, QORV_CS_BGRA8888);
    for (int x = 0; x < WIDTH; x++) {
        const uint8_t *p = bgra + 4 * x;
        printf("Y U V %3d %3d %3d -> R G B A %3d %3d %3d %3d\n", yuv[0][x], yuv[1][x], yuv[2][x], p[2], p[1], p[0],
               p[3]);
    }
    if (bgra[12] != 255 || bgra[13] != 255 || bgra[14] != 255 || bgra[15] != 255) return 1; /* white */

    /* Back from 5-6-5 words: their low bits are gone, so white comes back a little darker. */
    uint16_t words[WIDTH];
    void *const word_plane[1] = {words};
    const int32_t word_stride[1] = {sizeof words};
    qorv_csc_yuv444_to_rgb565(planes, WIDTH, HEIGHT, plane_strides, 0, word_plane, WIDTH, HEIGHT, word_stride, 0);
    uint8_t back[3][WIDTH];
    void *const back_planes[3] = {back[0], back[1], back[2]};
    const void *const word_source[1] = {words};
    qorv_csc_rgb565_to_yuv444(word_source, WIDTH, HEIGHT, word_stride, 0, back_planes, WIDTH, HEIGHT, plane_strides, 0);
    printf("white through 5-6-5: word %04x, Y %d\n", words[3], back[0][3]);
    if (words[3] != 0xFFFF || back[0][3] != 250) return 1;

    /* Where the sizes differ, the converter found scales as well. */
    uint8_t large[3 * WIDTH * 3];
    void *const large_channels[3] = {large, large + 1, large + 2};
    const int32_t large_strides[3] = {sizeof large, sizeof large, sizeof large};
    convert = qorv_imgp_get_fn_csc(WIDTH, HEIGHT, QORV_CS_YUV444, 3 * WIDTH, HEIGHT, QORV_CS_RGB888, &error);
    if (convert == NULL) return printf("no such converter: %d\n", (int)error);
    convert(planes, WIDTH, HEIGHT, plane_strides, 0, large_channels, 3 * WIDTH, HEIGHT, large_strides, QORV_CS_RGB888);
    if (large[0] != bgra[2] || large[1] != bgra[1] || large[2] != bgra[0]) return 1; /* the first pixel as it was */

    /* What no converter does is reported, not guessed. */
    convert = qorv_imgp_get_fn_csc(WIDTH, HEIGHT, QORV_CS_NV12, WIDTH, HEIGHT, QORV_CS_RGB888, &error);
    return convert == NULL && error == QORV_ERR_UNSUPPORTED_CS ? 0 : 1;
}
