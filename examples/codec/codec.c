/* Pictures, and the threads that code the rows of one in a wavefront. */
#include "codec.h"
enum { BLOCK_BYTES = 2048 }; /* more than a block can take: 24 x (9 + 16 x 31) bits, and the unit round them */

/* The padding is what vectors may reach; one alignment for all planes, as qorv_imgb_expand() wants it. */
static const uint32_t alignment[4] = {QORV_IMGB_WORD(16, 16), QORV_IMGB_WORD(16, 16), QORV_IMGB_WORD(16, 16), 0};
static const uint32_t padding[4] = {QORV_IMGB_WORD(32, 32), QORV_IMGB_WORD(16, 16), QORV_IMGB_WORD(16, 16), 0};

void picture_release(QORV_IMGB **picture) {
    if (*picture != NULL) (*picture)->release(*picture);
    *picture = NULL;
}

/* A picture with a reference for the pool and one for the caller, in the memory of the oldest one unless that is held
 * or too small. Middle grey stands above and to the left of it, where blocks at the edges find their neighbours. */
QORV_IMGB *picture_take(Codec *codec) {
    const int w = codec->header.width, h = codec->header.height;
    qorv_rlist_rem_data(codec->pool);
    QORV_IMGB **place = qorv_rlist_get_buf(codec->pool), *picture = *place;
    if (picture == NULL || picture->getref(picture) > 1 ||
        qorv_imgb_rebirth(picture, w, h, QORV_CS_YUV420, 0, alignment, padding) != QORV_OK) {
        picture_release(place);
        *place = picture = qorv_imgb_create(w, h, QORV_CS_YUV420, 0, alignment, padding, NULL, NULL, NULL);
    }
    for (int plane = 0; picture != NULL && plane < 3; plane++) {
        qorv_mset_x64a(sample_at(picture, plane, 0, -1), 128, (size_t)picture->aw);
        for (int y = 0; y < picture->ah >> (plane != 0); y++) *sample_at(picture, plane, -1, y) = 128;
    }
    if (picture != NULL) picture->addref(picture);
    return picture;
}

static void code_row(Codec *codec, int row) {
    Bits *bits = &codec->bits[row];
    const int32_t room = codec->columns * BLOCK_BYTES, *above = codec->progress[row];
    if (codec->encoding) write_begin(bits, (uint8_t *)codec->bytes->buf + (ptrdiff_t)row * room, room, 'R');
    if (!codec->encoding) read_begin(bits, &codec->units[row]);
    bool good = true;
    for (int column = 0; column < codec->columns; column++) { /* after the block above on the right */
        const bool last = column == codec->columns - 1;
        good = good && qorv_sync_wait(&above[(column + !last) / GROUP], 1) == 0 && code_block(codec, row, column);
        if (!last && column % GROUP < GROUP - 1 && good) continue;
        qorv_sync_wake(&codec->progress[row + 1][column / GROUP], good ? 1 : -1);
    }
}

static void *code_rows(void *context) {
    Codec *codec = context;
    int32_t row;
    while ((row = qorv_atomic_inc(&codec->next_row) - 1) < codec->rows) code_row(codec, row);
    return NULL;
}

int codec_run(Codec *codec, uint8_t md5[16]) {
    pthread_t others[MAX_THREADS];
    int started = 0, good = 0;
    if ((codec->current = picture_take(codec)) == NULL) return -1;
    quantiser_init(codec, (int)codec->header.qp);
    memset(codec->progress, 0, sizeof codec->progress);
    for (int i = 0; i < MAX_BLOCKS / GROUP; i++) codec->progress[0][i] = 1;
    codec->next_row = 0;
    while (started < codec->threads - 1 && pthread_create(&others[started], NULL, code_rows, codec) == 0) started++;
    code_rows(codec); /* by this thread alone, if there are no others */
    while (started > 0) pthread_join(others[--started], NULL);
    while (good < codec->rows && codec->progress[good + 1][(codec->columns - 1) / GROUP] == 1) good++;
    picture_release(&codec->reference);
    codec->reference = codec->current;
    qorv_imgb_expand(codec->reference, padding);
    qorv_md5_imgb(codec->reference, md5);
    return good;
}

void codec_stop(Codec *codec) {
    picture_release(&codec->source);
    picture_release(&codec->reference);
    while (codec->pool != NULL && qorv_rlist_get_used_cnt(codec->pool) > 0) {
        picture_release(qorv_rlist_get_data(codec->pool));
        qorv_rlist_rem_data(codec->pool);
    }
    if (codec->pool != NULL) qorv_rlist_delete(codec->pool);
    if (codec->bytes != NULL) codec->bytes->release(codec->bytes);
}

bool codec_start(Codec *codec) {
    codec_stop(codec);
    codec->columns = (codec->header.width + 15) / 16;
    codec->rows = (codec->header.height + 15) / 16;
    memset(codec->vectors, 0, sizeof codec->vectors);
    const int32_t bytes = codec->encoding ? codec->rows * codec->columns * BLOCK_BYTES : 1;
    codec->bytes = qorv_bitb_create((uint32_t)bytes, 0, 0, NULL, NULL, NULL);
    codec->pool = qorv_rlist_create(sizeof(QORV_IMGB *), 3); /* the current picture, its reference, and one elsewhere */
    QORV_IMGB **place;
    while (codec->pool != NULL && (place = qorv_rlist_get_buf(codec->pool)) != NULL) *place = NULL;
    return codec->bytes != NULL && codec->pool != NULL;
}
