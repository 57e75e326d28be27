/* Finds where a block of the current picture comes from: SAD over a window of the reference, then the residual and what
 * it would cost by its Hadamard transform. */
#include <qorv_skia.h>
#include <stdio.h>

enum { WIDTH = 64, HEIGHT = 64, BLOCK = 16, RANGE = 8 };

int main(void) {
    static uint8_t reference[HEIGHT][WIDTH], current[HEIGHT][WIDTH];
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) reference[y][x] = (uint8_t)((x * x + 3 * y * y + x * y) >> 4 & 127);
    }
    /* The current picture is the reference moved by (5, -3), and one brighter. */
    for (int y = 8; y < HEIGHT - 8; y++) {
        for (int x = 8; x < WIDTH - 8; x++) current[y][x] = (uint8_t)(reference[y - 3][x + 5] + 1);
    }

    const int at_x = 24, at_y = 24;
    const uint8_t *block = &current[at_y][at_x];
    uint32_t best = UINT32_MAX;
    int best_x = 0, best_y = 0;
    for (int y = -RANGE; y <= RANGE; y++) {
        for (int x = -RANGE; x <= RANGE; x++) {
            const uint32_t sad = qorv_sad16x16(block, &reference[at_y + y][at_x + x], WIDTH, WIDTH);
            if (sad >= best) continue;
            best = sad;
            best_x = x;
            best_y = y;
        }
    }
    printf("motion (%d, %d), SAD %u\n", best_x, best_y, (unsigned)best);

    const uint8_t *match = &reference[at_y + best_y][at_x + best_x];
    int16_t residual[BLOCK * BLOCK];
    qorv_diff16x16(block, match, WIDTH, WIDTH, BLOCK, residual);
    printf("first residual %d, SSD %u, SATD of 4x4 tiles %u, SATD of the first 8x8 %u\n", residual[0],
           (unsigned)qorv_ssd(BLOCK, BLOCK, block, match, WIDTH, WIDTH),
           (unsigned)qorv_satd(BLOCK, BLOCK, block, match, WIDTH, WIDTH),
           (unsigned)qorv_satd8x8(block, match, WIDTH, WIDTH));
    return best_x == 5 && best_y == -3 && best == 256 && residual[0] == 1 ? 0 : 1;
}
