/* Rows of a picture handed from one thread to the next: the second waits until the first has finished the last. */
#include <pthread.h>
#include <qorv_skia.h>
#include <stdio.h>

enum { ROWS = 8 };

static int32_t rows_done = 0; /* the shared word */
static int32_t row[ROWS];

static void *decode(void *unused) {
    (void)unused;
    for (int32_t y = 0; y < ROWS; y++) {
        row[y] = y * y;
        qorv_sync_wake(&rows_done, y + 1); /* publishes what was written before, and wakes */
    }
    return NULL;
}

int main(void) {
    pthread_t decoder;
    if (pthread_create(&decoder, NULL, decode, NULL) != 0) return 1;
    /* Waits for one exact value. A value that is replaced before the waiter looks is missed, so wait for the last one.
     * -1 in the word would mean that the decoder gave up. */
    const int32_t outcome = qorv_sync_wait(&rows_done, ROWS);
    printf("outcome %d, last row %d\n", (int)outcome, (int)row[ROWS - 1]);
    pthread_join(decoder, NULL);
    return outcome == 0 && row[ROWS - 1] == 49 ? 0 : 1;
}
