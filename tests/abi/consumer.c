/* A C program that knows the header and the shared library alone: the layouts, as a C compiler sees them, and one call
 * into each family. */
#include <stdio.h>
#include <string.h>

#include "qorv_skia.h"

#if defined(__LP64__)
#define QORV_AT(record, field, offset) _Static_assert(offsetof(record, field) == (offset), #record "." #field);
#define QORV_SIZE(record, bytes) _Static_assert(sizeof(record) == (bytes), #record);
#include "core/record_layouts.inc"
#endif

static int failures = 0;

#define CHECK(condition)                                           \
    do {                                                           \
        if (!(condition)) {                                        \
            printf("%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            failures++;                                            \
        }                                                          \
    } while (0)

static void check_core(void) {
    CHECK(qorv_version()[0] == 0);
    void *block = qorv_malloc_align32(100);
    CHECK(block != NULL && (uintptr_t)block % 32 == 0);
    qorv_mset_x64a(block, 7, 100);
    CHECK(((uint8_t *)block)[99] == 7);
    qorv_mfree_align32(block);

    int32_t word = 0;
    CHECK(qorv_sync_wake(&word, 5) == 0 && qorv_sync_wait(&word, 5) == 0);
    char path[6];
    CHECK(qorv_get_temp_path(path) == 5 && strcmp(path, "/tmp/") == 0);
}

static void check_buffers(void) {
    const uint32_t pad[4] = {QORV_IMGB_WORD(2, 2), QORV_IMGB_WORD(2, 2), QORV_IMGB_WORD(2, 2), 0};
    int32_t status;
    QORV_IMGB *imgb = qorv_imgb_create(7, 5, QORV_CS_YUV420, QORV_IMGB_OPT_ZERO_PAD, NULL, pad, NULL, NULL, &status);
    CHECK(imgb != NULL && status == QORV_OK && imgb->s[0] == 11);
    *(uint8_t *)imgb->a[0] = 9;
    CHECK(qorv_imgb_expand(imgb, pad) == QORV_OK && *(uint8_t *)imgb->baddr[0] == 9);
    CHECK(imgb->release(imgb) == 0);

    QORV_AUDB *audb = qorv_audb_create(10, 2, 16, 0, 1, 0, NULL, NULL, NULL);
    CHECK(audb->size[0] == 40 && audb->release(audb) == 0);
    QORV_BITB *bitb = qorv_bitb_create(10, 3, 0, NULL, NULL, NULL);
    CHECK(bitb->type == 3 && bitb->release(bitb) == 0);
    QORV_MFAL *mfal = qorv_mfal_create(0, NULL);
    CHECK(mfal->addref(mfal) == 2 && mfal->release(mfal) == 1 && mfal->release(mfal) == 0);
    QORV_VDATA vdata = {0, 0, NULL};
    CHECK(qorv_vdata_set(&vdata, "text", 4, 1) == QORV_OK && strcmp(vdata.data, "text") == 0);
    qorv_vdata_free(&vdata);
}

static void check_containers(void) {
    QORV_LIST *list = qorv_list_create(sizeof(int), NULL);
    const int item = 42;
    CHECK(*(int *)qorv_list_add(list, &item) == 42 && qorv_list_get_cnt(list) == 1);
    qorv_list_delete(list);
    QORV_RLIST *rlist = qorv_rlist_create(16, 2);
    void *buf = qorv_rlist_get_buf(rlist);
    CHECK(buf != NULL && qorv_rlist_get_data(rlist) == buf);
    qorv_rlist_delete(rlist);
    QORV_RBUF *rbuf = qorv_rbuf_create(16);
    char line[18];
    CHECK(qorv_rbuf_put(rbuf, "ab\r\n", 4) == 4 && qorv_rbuf_get_one_line(rbuf, line, 16) == 4);
    qorv_rbuf_delete(rbuf);
}

static void check_text(void) {
    char out[4][32];
    const char *next;
    CHECK(qorv_str_parse_uri("rtsp://srv/x", out[0], out[1], out[2], out[3], &next) == 0);
    CHECK(strcmp(out[1], "srv") == 0 && strcmp(out[3], "/x") == 0);
}

static void check_bitstream(void) {
    uint8_t bytes[8];
    QORV_BSW bsw;
    CHECK(qorv_bsw_init(&bsw, bytes, sizeof bytes, NULL) == &bsw);
    qorv_bsw_write_ue(&bsw, 41);
    CHECK(qorv_bsw_sink(&bsw) == 0);
    QORV_BSR bsr;
    qorv_bsr_init(&bsr, bytes, sizeof bytes, NULL);
    CHECK(qorv_bsr_read_ue(&bsr) == 41);
}

static void check_pictures(void) {
    const uint8_t grey[3] = {100, 128, 128};
    const void *src[3] = {&grey[0], &grey[1], &grey[2]};
    uint8_t rgb[3] = {0};
    void *dst[3] = {&rgb[0], &rgb[1], &rgb[2]};
    const int32_t stride[3] = {3, 3, 3};
    const qorv_csc_fn convert = qorv_imgp_get_fn_csc(1, 1, QORV_CS_YUV444, 1, 1, QORV_CS_RGB888, NULL);
    CHECK(convert != NULL);
    convert(src, 1, 1, stride, 0, dst, 1, 1, stride, QORV_CS_RGB888);
    CHECK(rgb[0] == 100 && rgb[1] == 100 && rgb[2] == 100);

    uint8_t row[4] = {10, 10, 10, 10}, half[2] = {0, 0};
    const QORV_IRSZ_PARAM param = {20, 10, 4, 1, 4, 0, 2, 1, 2, half};
    QORV_IRSZ *irsz = qorv_irsz_create(&param, NULL);
    CHECK(irsz != NULL && qorv_irsz(irsz, row, 0, 0) == 0 && half[0] == 10 && half[1] == 10);
    qorv_irsz_delete(irsz);
    CHECK(qorv_tbl_bilinear_rszw[0][0] == 64);

    uint8_t block[16], zeros[16] = {0};
    int16_t difference[16];
    memset(block, 2, sizeof block);
    CHECK(qorv_sad4x4(block, zeros, 4, 4) == 32 && qorv_ssd(4, 4, block, zeros, 4, 4) == 64);
    CHECK(qorv_satd4x4(block, block, 4, 4) == 0);
    qorv_diff4x4(block, zeros, 4, 4, 4, difference);
    CHECK(difference[15] == 2);
}

static void check_media_and_digests(void) {
    CHECK(qorv_fcc2mt(85) == QORV_MT_AUD_MP3 && qorv_is_vkeyfrm(QORV_MT_VID_HFYU, NULL, 0) == 1);
    QORV_MD5 md5;
    uint8_t digest[16];
    CHECK(qorv_md5_init(&md5) == &md5);
    qorv_md5_update(&md5, "abc", 3);
    qorv_md5_finish(&md5, digest);
    CHECK(digest[0] == 0x90 && digest[15] == 0x72);
}

int main(void) {
    check_core();
    check_buffers();
    check_containers();
    check_text();
    check_bitstream();
    check_pictures();
    check_media_and_digests();
    return failures;
}
