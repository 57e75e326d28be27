/* A picture: made, drawn, hashed, shared, given back. */
#include <stdio.h>

#include "scene.h"

int main(void) {
    int32_t status;
    QORV_IMGB *picture = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, NULL, NULL, NULL, &status);
    if (picture == NULL) return printf("no picture: status %d\n", (int)status);
    draw(picture, 0);

    uint8_t md5[16];
    qorv_md5_imgb(picture, md5);
    printf("%d planes of %d, %d and %d bytes a row, MD5 ", 3, picture->s[0], picture->s[1], picture->s[2]);
    for (int i = 0; i < 16; i++) printf("%02x", md5[i]);
    putchar('\n');

    picture->addref(picture); /* a display takes it */
    const int32_t left = picture->release(picture);
    printf("%d holder left\n", left);
    return left == 1 ? picture->release(picture) : 1; /* 0: the memory is free */
}
