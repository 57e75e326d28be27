/* MD5 of bytes that come in pieces, and of a picture, as decoders are compared with. */
#include <qorv_skia.h>
#include <stdio.h>
#include <string.h>

static void to_hex(const uint8_t digest[16], char text[33]) {
    for (int i = 0; i < 16; i++) snprintf(text + 2 * i, 3, "%02x", digest[i]);
}

int main(void) {
    QORV_MD5 md5;
    uint8_t digest[16];
    char text[33];
    qorv_md5_init(&md5);
    qorv_md5_update(&md5, "message ", 8);
    qorv_md5_update(&md5, "digest", 6);
    qorv_md5_finish(&md5, digest);
    to_hex(digest, text);
    printf("message digest: %s\n", text);
    if (strcmp(text, "f96b697d7cb7938d525a2f31aaf161d0") != 0) return 1; /* RFC 1321, A.5 */

    /* The visible samples of luma and both chroma planes, whatever the strides are. */
    uint8_t luma[2][8] = {{'m', 'e', 's', 's'}, {'a', 'g', 'e', ' '}};
    uint8_t chroma[2][4] = {{'d', 'i'}, {'g', 'e'}};
    QORV_IMGB picture = {.w = 4, .h = 2, .cs = QORV_CS_YUV420, .s = {8, 4, 4}, .a = {luma, chroma[0], chroma[1], NULL}};
    uint8_t expected[16];
    qorv_md5_init(&md5);
    qorv_md5_update(&md5, "message dige", 12);
    qorv_md5_finish(&md5, expected);
    if (qorv_md5_imgb(&picture, digest) != QORV_OK) return 1;
    return memcmp(digest, expected, sizeof digest) != 0;
}
