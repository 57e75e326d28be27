/* A program of a user, in C and in C++ alike: a grey picture through the image buffer, a converter and the digest. */
#include <qorv_skia.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    char version[32];
    snprintf(version, sizeof version, "%d.%d.%d", QORV_VERSION_MAJOR, QORV_VERSION_MINOR, QORV_VERSION_PATCH);
    if (strcmp(version, CONSUMER_VERSION) != 0) return printf("header %s, package %s\n", version, CONSUMER_VERSION);

    const int32_t w = 16, h = 4;
    int32_t status = QORV_ERR;
    QORV_IMGB *yuv = qorv_imgb_create(w, h, QORV_CS_YUV444, 0, NULL, NULL, NULL, NULL, &status);
    QORV_IMGB *rgb = qorv_imgb_create(w, h, QORV_CS_RGB888, 0, NULL, NULL, NULL, NULL, &status);
    if (yuv == NULL || rgb == NULL) return printf("status %d\n", status);
    for (int plane = 0; plane < 3; plane++) qorv_mset_x64a(yuv->a[plane], 128, (size_t)(yuv->s[plane] * yuv->e[plane]));

    uint8_t *first = (uint8_t *)rgb->a[0];
    void *const dst[3] = {first, first + 1, first + 2};
    const int32_t dst_stride[3] = {rgb->s[0], rgb->s[0], rgb->s[0]};
    qorv_csc_fn convert = qorv_imgp_get_fn_csc(w, h, QORV_CS_YUV444, w, h, QORV_CS_RGB888, NULL);
    convert((const void *const *)yuv->a, w, h, yuv->s, 0, dst, w, h, dst_stride, QORV_CS_RGB888);
    if (first[0] != 128 || first[(h - 1) * rgb->s[0] + 3 * w - 1] != 128) return printf("%d is no grey\n", first[0]);

    uint8_t digest[16];
    if (qorv_md5_imgb(yuv, digest) != QORV_OK) return printf("no digest\n");
    return yuv->release(yuv) + rgb->release(rgb);
}
