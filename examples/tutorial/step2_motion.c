/* A reference: the picture before with its borders repeated, and where in it a block comes from. */
#include <stdio.h>

#include "scene.h"

int main(void) {
    const uint32_t pad[4] = {QORV_IMGB_WORD(PAD, PAD), QORV_IMGB_WORD(PAD, PAD), QORV_IMGB_WORD(PAD, PAD), 0};
    QORV_IMGB *before = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, pad, NULL, NULL, NULL);
    QORV_IMGB *now = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, NULL, NULL, NULL, NULL);
    if (before == NULL || now == NULL) return 1;
    draw(before, 0);
    draw(now, 1);
    qorv_imgb_expand(before, pad); /* now a vector may point outside */

    const int x = 48, y = 32; /* inside the square */
    const uint8_t *block = row_of(now, 0, y) + x;
    uint32_t best = UINT32_MAX;
    int best_x = 0, best_y = 0;
    for (int v = -8; v <= 8; v++) {
        for (int u = -8; u <= 8; u++) {
            const uint32_t sad = qorv_sad16x16(block, row_of(before, 0, y + v) + x + u, now->s[0], before->s[0]);
            if (sad >= best) continue;
            best = sad;
            best_x = u;
            best_y = v;
        }
    }
    printf("the block comes from (%d, %d), SAD %u\n", best_x, best_y, (unsigned)best);
    before->release(before);
    now->release(now);
    return best_x == -3 && best_y == -1 && best == 0 ? 0 : 1;
}
