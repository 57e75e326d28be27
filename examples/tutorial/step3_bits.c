/* What the prediction leaves, as bits and back: runs of zeros and values, in Exp-Golomb codes. */
#include <stdio.h>

#include "scene.h"

enum { COUNT = 256 };

static int32_t write_residual(uint8_t *bytes, int32_t size, const int16_t *residual) {
    QORV_BSW bsw;
    qorv_bsw_init(&bsw, bytes, size, NULL);
    uint32_t zeros = 0;
    for (int i = 0; i < COUNT; i++) {
        if (residual[i] == 0) {
            zeros++;
            continue;
        }
        qorv_bsw_write_ue(&bsw, zeros);
        qorv_bsw_write_se(&bsw, residual[i]);
        zeros = 0;
    }
    qorv_bsw_write_ue(&bsw, zeros); /* the rest */
    return qorv_bsw_sink(&bsw) == QORV_OK ? (int32_t)(bsw.cur - bsw.beg) : -1;
}

static int read_residual(const uint8_t *bytes, int32_t size, int16_t *residual) {
    QORV_BSR bsr;
    qorv_bsr_init(&bsr, bytes, size, NULL);
    for (uint32_t i = 0;; i++) {
        const uint32_t zeros = qorv_bsr_read_ue(&bsr); /* checked: a broken stream may say anything */
        if (zeros > COUNT - i) return QORV_ERR;
        for (uint32_t end = i + zeros; i < end; i++) residual[i] = 0;
        if (i == COUNT) return QORV_OK;
        residual[i] = (int16_t)qorv_bsr_read_se(&bsr);
    }
}

int main(void) {
    QORV_IMGB *before = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, NULL, NULL, NULL, NULL);
    QORV_IMGB *now = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, NULL, NULL, NULL, NULL);
    if (before == NULL || now == NULL) return 1;
    draw(before, 0);
    draw(now, 1);
    /* A block at the square's corner, predicted from the same place: part of it has changed. */
    int16_t residual[COUNT], decoded[COUNT];
    qorv_diff16x16(row_of(now, 0, 16) + 32, row_of(before, 0, 16) + 32, now->s[0], before->s[0], 16, residual);
    uint8_t bytes[4 * COUNT]; /* more than 256 codes of a value and no zeros need, and the byte that is never used */
    const int32_t size = write_residual(bytes, sizeof bytes, residual);
    int wrong = size < 0 || read_residual(bytes, size, decoded) != QORV_OK;
    for (int i = 0; i < COUNT && !wrong; i++) wrong = decoded[i] != residual[i];
    printf("256 differences in %d bytes\n", (int)size);
    before->release(before);
    now->release(now);
    return wrong;
}
