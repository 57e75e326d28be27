/* Aligned memory, fills and copies of pictures and blocks. */
#include <qorv_skia.h>
#include <stdio.h>

enum { WIDTH = 40, HEIGHT = 6, STRIDE = 64 };

int main(void) {
    uint8_t *picture = qorv_malloc_align32(STRIDE * HEIGHT);
    uint8_t *copy = qorv_malloc_align32(STRIDE * HEIGHT);
    if (picture == NULL || copy == NULL) return 1;
    qorv_mset_x64a(picture, 16, STRIDE * HEIGHT);      /* black */
    qorv_mset_x64a(picture + 2 * STRIDE + 8, 235, 12); /* a white run in row 2 */
    qorv_mclr_x64(copy, STRIDE * HEIGHT);
    qorv_mcpy_pic(copy, picture, STRIDE, STRIDE, WIDTH, HEIGHT); /* the margin of 24 bytes a row stays zero */
    printf("row 2: %d %d ... %d, margin %d\n", copy[2 * STRIDE + 7], copy[2 * STRIDE + 8], copy[2 * STRIDE + 19],
           copy[2 * STRIDE + WIDTH]);
    if (copy[2 * STRIDE + 19] != 235 || copy[2 * STRIDE + WIDTH] != 0) return 1;

    /* A block of 12x4 into a buffer of its own. The widths are those of qorv_mcpy_blk(): others copy 64 bytes a row. */
    uint8_t block[4 * 12];
    qorv_mcpy_blk(block, picture + 1 * STRIDE + 8, 12, STRIDE, 12, 4);
    if (block[11] != 16 || block[12] != 235) return 1;

    qorv_mfree_align32(copy);
    qorv_mfree_align32(picture);

    char path[6];
    qorv_get_temp_path(path);
    printf("scratch files go to %s\n", path);
    return 0;
}
