/* The encoder: what a block is predicted from, and the units of a picture. A cost is SAD or SATD, and lambda a bit. */
#include "codec.h"
/* Tries a vector: of whole samples by SAD, with its half samples by SATD. */
static bool try_vector(const Codec *codec, int row, int column, Block *block, int x, int y, bool whole) {
    const uint8_t *source = sample_at(codec->source, 0, 16 * column, 16 * row);
    const Vector v = vector_clamp(codec, row, column, whole ? x & ~1 : x, whole ? y & ~1 : y);
    const int bits = qorv_bsw_size_se(v.x - block->predicted.x) + qorv_bsw_size_se(v.y - block->predicted.y);
    uint8_t half[256];
    if (!whole) predict_inter(codec, 0, row, column, v, half, 16);
    const uint8_t *there = whole ? sample_at(codec->reference, 0, 16 * column + v.x / 2, 16 * row + v.y / 2) : half;
    const int stride = codec->source->s[0], there_stride = whole ? codec->reference->s[0] : 16;
    uint32_t cost = codec->lambda * (uint32_t)bits;
    cost += whole ? qorv_sad16x16(source, there, stride, there_stride) : qorv_satd(16, 16, source, there, stride, 16);
    if (cost >= block->cost) return false;
    block->vector = v;
    block->cost = cost;
    return true;
}

/* A diamond round the best vector, moved as long as that helps. */
static void search_diamond(const Codec *codec, int row, int column, Block *block, int step, bool whole) {
    for (int best = 0, back = -1; best >= 0; back = best ^ 1) { /* back: where it came from */
        const Vector center = block->vector;
        best = -1;
        for (int i = 0; i < 4; i++) {
            const int x = center.x + step * ((i == 0) - (i == 1)), y = center.y + step * ((i == 2) - (i == 3));
            if (i != back && try_vector(codec, row, column, block, x, y, whole)) best = i;
        }
    }
}

static void search_vector(const Codec *codec, int row, int column, Block *block) {
    const Vector *above = &codec->vectors[row][column + 1], *here = &codec->vectors[row + 1][column + 1];
    const Vector first[] = {{0, 0}, block->predicted, here[-1], above[0], above[1]};
    for (int i = 0; i < 5; i++) try_vector(codec, row, column, block, first[i].x, first[i].y, true);
    for (int step = 8; step >= 2; step /= 2) search_diamond(codec, row, column, block, step, true);
    block->cost = UINT32_MAX;
    try_vector(codec, row, column, block, block->vector.x, block->vector.y, false);
    search_diamond(codec, row, column, block, 1, false);
}

/* The best direction if it is clearly better than the vector. It is judged by the source, as the picture's own samples
 * are not there yet, and are worse; and what is repeated mostly needs fewer levels: which the bits added stand for. */
static void search_intra(const Codec *codec, int row, int column, Block *block) {
    const uint8_t *source = sample_at(codec->source, 0, 16 * column, 16 * row);
    const int stride = codec->source->s[0];
    const uint32_t added = 50 * codec->lambda;
    for (uint32_t kind = DC; kind < KINDS && block->cost > added; kind++) {
        uint8_t there[256];
        for (int x = 0, y = 0; y < 16; y += x / 12 * 4, x = (x + 4) % 16)
            predict_intra(kind, source + y * stride + x, stride, there + 16 * y + x, 16);
        const uint32_t cost = qorv_satd(16, 16, source, there, stride, 16) + added;
        if (cost < block->cost) block->kind = kind;
        if (cost < block->cost) block->cost = cost;
    }
}

void decide_block(Codec *codec, int row, int column, Block *block) {
    const uint8_t *source = sample_at(codec->source, 0, 16 * column, 16 * row);
    block->kind = codec->header.key ? DC : SKIP;
    block->vector = block->predicted;
    block->cost = UINT32_MAX;
    if (!codec->header.key) {
        /* First without a search: less than a quarter of the quantiser's step mostly leaves no levels. */
        uint8_t there[256];
        predict_inter(codec, 0, row, column, block->predicted, there, 16);
        if (qorv_sad16x16(source, there, codec->source->s[0], 16) < (uint32_t)codec->step[0] * 4) {
            build_block(codec, row, column, block);
            if (block->coded == 0) return;
        }
        search_vector(codec, row, column, block);
        block->kind = INTER;
    }
    search_intra(codec, row, column, block);
    build_block(codec, row, column, block);
    const bool still = memcmp(&block->vector, &block->predicted, sizeof(Vector)) == 0;
    if (block->kind == INTER && block->coded == 0 && still) block->kind = SKIP;
}

/* Repeats the last column and row up to whole blocks. */
static void fill_up(const QORV_IMGB *picture) {
    for (int plane = 0; plane < 3; plane++) {
        const int c = plane > 0, width = (picture->w + c) >> c, height = (picture->h + c) >> c,
                  whole = picture->aw >> c;
        uint8_t *last = sample_at(picture, plane, width - 1, 0), *bottom = sample_at(picture, plane, 0, height - 1);
        qorv_imgb_expand_ver(last, last + 1, height, picture->s[plane], whole - width);
        qorv_imgb_expand_hor(bottom, bottom + picture->s[plane], picture->s[plane], 15);
    }
}

void encode_unit(Codec *codec, int type, Sink sink, void *to) {
    uint8_t bytes[64] = {0};
    Bits bits;
    write_begin(&bits, bytes, sizeof bytes, type);
    code_header(&bits, &codec->header, type);
    write_escaped(&bits, sink, to);
}

bool encode_picture(Codec *codec, Sink sink, void *to) {
    Header *header = &codec->header;
    header->key = header->number % (uint32_t)codec->key_interval == 0;
    header->qp = (uint32_t)(header->key && codec->qp > 3 ? codec->qp - 3 : codec->qp); /* all others build on it */
    codec->lambda = (10u << codec->qp / 6) / 40 + 1;
    fill_up(codec->source);
    if (codec_run(codec, header->md5) != codec->rows) return false;
    if (header->key) encode_unit(codec, 'S', sink, to);
    encode_unit(codec, 'P', sink, to);
    for (int i = 0; i < codec->rows; i++) write_escaped(&codec->bits[i], sink, to);
    header->number++;
    return true;
}
