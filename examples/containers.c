/* A list of items with a cursor, a pool of buffers that go round, and a ring of bytes that is read line by line. */
#include <qorv_skia.h>
#include <stdio.h>
#include <string.h>

static int use_list(void) {
    QORV_LIST *list = qorv_list_create(sizeof(int), NULL);
    if (list == NULL) return 1;
    for (int pts = 0; pts < 5; pts++) qorv_list_add(list, &pts); /* stores a copy */
    for (int *pts = qorv_list_move_first(list); pts != NULL;) {
        if (*pts % 2 == 1) {
            qorv_list_rem_cur(list); /* the cursor moves on by itself */
            pts = qorv_list_get_cur(list);
        } else {
            pts = qorv_list_move_next(list);
        }
    }
    const int count = qorv_list_get_cnt(list);
    qorv_list_delete(list);
    printf("list: %d items left\n", count);
    return count != 3;
}

static int use_pool(void) {
    QORV_RLIST *pool = qorv_rlist_create(64, 2);
    if (pool == NULL) return 1;
    char *first = qorv_rlist_get_buf(pool);
    char *second = qorv_rlist_get_buf(pool);
    const int exhausted = qorv_rlist_get_buf(pool) == NULL;
    strcpy(first, "oldest");
    strcpy(second, "newest");
    printf("pool: %s comes first\n", (char *)qorv_rlist_get_data(pool));
    const int in_order = qorv_rlist_get_data(pool) == first;
    qorv_rlist_rem_data(pool); /* back to the free ones */
    const int free_now = qorv_rlist_get_free_cnt(pool);
    qorv_rlist_delete(pool);
    return !exhausted || !in_order || free_now != 1;
}

static int use_ring(void) {
    enum { SIZE = 64 };
    QORV_RBUF *ring = qorv_rbuf_create(SIZE); /* holds SIZE - 1 bytes */
    if (ring == NULL) return 1;
    const char request[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
    if (qorv_rbuf_put(ring, request, (int32_t)strlen(request)) == 0) return 1;
    char line[SIZE + 2];
    int lines = 0;
    while (qorv_rbuf_get_one_line(ring, line, SIZE) > 0) {
        lines++;
        printf("ring: %s", line);
    }
    qorv_rbuf_delete(ring);
    return lines != 3;
}

int main(void) {
    return use_list() + use_pool() + use_ring();
}
