/* A threaded pipeline: two threads share the rows of a picture, each row behind the one above, and a third takes the
 * outcome from a ring. */
#include <pthread.h>
#include <stdio.h>

#include "scene.h"

enum { ROWS = HEIGHT / 16, COLUMNS = WIDTH / 16 };

static int32_t done[ROWS][COLUMNS]; /* a word for each block: a word waits for one value alone */
static int32_t cost[ROWS][COLUMNS];
static int32_t next_row;
static QORV_IMGB *picture;
static QORV_RBUF *ring;
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t filled = PTHREAD_COND_INITIALIZER;

/* The dearest road from the upper edge to a block: it needs what the row above has found so far. */
static void *code_rows(void *unused) {
    (void)unused;
    int32_t y;
    while ((y = qorv_atomic_inc(&next_row) - 1) < ROWS) {
        for (int x = 0; x < COLUMNS; x++) {
            const int right = x + 1 < COLUMNS ? x + 1 : x;
            if (y > 0) qorv_sync_wait(&done[y - 1][right], 1);
            const uint8_t *block = row_of(picture, 0, 16 * y) + 16 * x;
            const int32_t here =
                (int32_t)qorv_satd(16, 12, block, block + 4 * picture->s[0], picture->s[0], picture->s[0]);
            const int32_t above = y == 0                                ? 0
                                  : cost[y - 1][x] > cost[y - 1][right] ? cost[y - 1][x]
                                                                        : cost[y - 1][right];
            cost[y][x] = here + above;
            qorv_sync_wake(&done[y][x], 1); /* publishes the cost as well */
        }
        pthread_mutex_lock(&lock);
        qorv_rbuf_put(ring, &y, sizeof y); /* the ring itself knows nothing of threads */
        pthread_cond_signal(&filled);
        pthread_mutex_unlock(&lock);
    }
    return NULL;
}

static void *report(void *unused) {
    (void)unused;
    for (int i = 0; i < ROWS; i++) {
        int32_t y;
        pthread_mutex_lock(&lock);
        while (qorv_rbuf_is_empty(ring)) pthread_cond_wait(&filled, &lock);
        qorv_rbuf_get(ring, &y, sizeof y);
        pthread_mutex_unlock(&lock);
        printf("row %d is ready, cost up to its end %d\n", (int)y, (int)cost[y][COLUMNS - 1]);
    }
    return NULL;
}

int main(void) {
    void *(*const roles[3])(void *) = {code_rows, code_rows, report};
    pthread_t threads[3];
    picture = qorv_imgb_create(WIDTH, HEIGHT, QORV_CS_YUV420, 0, NULL, NULL, NULL, NULL, NULL);
    ring = qorv_rbuf_create(ROWS * (int32_t)sizeof(int32_t) + 1); /* one byte always stays free */
    if (picture == NULL || ring == NULL) return 1;
    draw(picture, 0);
    for (int i = 0; i < 3; i++) {
        if (pthread_create(&threads[i], NULL, roles[i], NULL) != 0) return 1;
    }
    for (int i = 0; i < 3; i++) pthread_join(threads[i], NULL);
    const int32_t dearest = cost[ROWS - 1][COLUMNS - 1];
    qorv_rbuf_delete(ring);
    return picture->release(picture) + (dearest <= 0);
}
