/* What stands in a stream, each element once: mostly the same function writes and reads it. Escapes are put in when a
 * unit has ended, and taken out by what the bit reader calls when its word of 32 bits is empty: nothing else knows. */
#include "codec.h"
static int32_t refill_unescaped(QORV_BSR *bsr, int32_t count) {
    Bits *bits = (Bits *)bsr;
    bsr->code = 0;
    for (bsr->leftbits = 0; bsr->leftbits < 8 * count && bsr->cur <= bsr->end; bsr->cur++) {
        const bool escape = bits->zeros >= 2 && *bsr->cur == 3;
        bits->zeros = *bsr->cur == 0 ? bits->zeros + 1 : 0;
        if (escape) continue;
        bsr->code |= (uint32_t)*bsr->cur << (24 - bsr->leftbits);
        bsr->leftbits += 8;
    }
    return bsr->leftbits > 0 ? QORV_OK : QORV_ERR;
}

void write_begin(Bits *bits, void *buffer, int32_t size, int type) {
    *bits = (Bits){.reading = false};
    qorv_bsw_init(&bits->bsw, buffer, size, NULL);
    qorv_bsw_write(&bits->bsw, 1, 24);
    qorv_bsw_write(&bits->bsw, (uint32_t)type, 8);
}

void read_begin(Bits *bits, const Unit *unit) {
    *bits = (Bits){.reading = true};
    qorv_bsr_init(&bits->bsr, unit->payload, unit->size, refill_unescaped);
}

void write_escaped(const Bits *bits, Sink sink, void *to) {
    const uint8_t *done = bits->bsw.beg, *end = bits->bsw.cur, *at = done + 4; /* a start code is not escaped */
    while (end - at > 2 && (at = memchr(at, 0, (size_t)(end - at - 2))) != NULL) {
        if (at++[1] != 0 || at[1] > 3) continue;
        sink(to, done, (size_t)(++at - done));
        sink(to, "\3", 1);
        done = at;
    }
    sink(to, done, (size_t)(end - done));
}

/* Reads past the end give values, not errors: whether all bits were read, and no more, is seen here. */
bool bits_end(Bits *bits) {
    if (bits->reading) {
        const bool ended = qorv_bsr_read1(&bits->bsr) == 1 && qorv_bsr_read_align8(&bits->bsr, NULL) == 0;
        return ended && bits->bsr.leftbits == 0 && bits->bsr.cur > bits->bsr.end;
    }
    qorv_bsw_write1(&bits->bsw, 1); /* so that no unit ends in a zero byte, and the next start code stands out */
    return qorv_bsw_sink(&bits->bsw) == QORV_OK;
}

static int32_t find_start_code(const uint8_t *stream, int32_t size, int32_t at) {
    while (size - at >= 4 && !(stream[at] == 0 && stream[at + 1] == 0 && stream[at + 2] == 1)) at++;
    return size - at >= 4 ? at : size;
}

bool next_unit(const uint8_t *stream, int32_t size, int32_t *at, Unit *unit) {
    const int32_t begin = find_start_code(stream, size, *at);
    *at = begin == size ? size : find_start_code(stream, size, begin + 4);
    if (begin != size) *unit = (Unit){stream[begin + 3], *at - begin - 4, begin, stream + begin + 4};
    return begin != size;
}

static uint32_t code_bits(Bits *bits, uint32_t value, int n) {
    if (n > 16) return code_bits(bits, value >> 16, n - 16) << 16 | code_bits(bits, value & 0xFFFF, 16);
    return bits->reading ? qorv_bsr_read(&bits->bsr, n) : (qorv_bsw_write(&bits->bsw, value, n), value);
}
static uint32_t code_ue(Bits *bits, uint32_t value) {
    return bits->reading ? qorv_bsr_read_ue(&bits->bsr) : (qorv_bsw_write_ue(&bits->bsw, value), value);
}
static int32_t code_se(Bits *bits, int32_t value) {
    return bits->reading ? qorv_bsr_read_se(&bits->bsr) : (qorv_bsw_write_se(&bits->bsw, value), value);
}

bool code_header(Bits *bits, Header *header, int type) {
    if (type == 'S') {
        if (code_bits(bits, 'Q' << 8 | 'V', 16) != ('Q' << 8 | 'V')) return false;
        header->width = (int32_t)(code_ue(bits, (uint32_t)header->width - 1) + 1);
        header->height = (int32_t)(code_ue(bits, (uint32_t)header->height - 1) + 1);
        header->rate_num = code_bits(bits, header->rate_num, 32);
        header->rate_den = code_bits(bits, header->rate_den, 32);
    }
    if (type == 'P') {
        header->number = code_bits(bits, header->number, 32);
        header->key = code_bits(bits, header->key, 1);
        header->qp = code_bits(bits, header->qp, 6);
        for (int i = 0; i < 16; i++) header->md5[i] = (uint8_t)code_bits(bits, header->md5[i], 8);
    }
    return header->width > 0 && header->width <= MAX_SIDE && header->height > 0 && header->height <= MAX_SIDE &&
           header->qp <= MAX_QP && bits_end(bits);
}

/* Of each level that is not 0, in zigzag order: the zeros before it, its magnitude, its sign. */
static bool code_levels(Bits *bits, uint32_t *count, int16_t levels[16]) {
    static const uint8_t zigzag[16] = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};
    if (bits->reading) memset(levels, 0, 16 * sizeof *levels);
    if ((*count = code_ue(bits, *count)) > 16) return false;
    for (uint32_t left = *count, at = 0; left > 0; left--, at++) {
        uint32_t zeros = bits->reading ? qorv_bsr_read_ue(&bits->bsr) : 0;
        while (!bits->reading && levels[zigzag[at + zeros]] == 0) zeros++;
        if (zeros > 16 - at - left) return false;
        at += zeros;
        int16_t *level = &levels[zigzag[at]];
        if (bits->reading) {
            const uint32_t less_one = qorv_bsr_read_ue(&bits->bsr);
            if (less_one > 2046) return false; /* no residual of 8 bits has a larger level */
            *level = (int16_t)(qorv_bsr_read(&bits->bsr, 1) != 0 ? -1 - (int)less_one : 1 + (int)less_one);
        } else { /* all at once: the Exp-Golomb code of a number is the next one, after a zero for each bit but one */
            const uint32_t magnitude = (uint32_t)abs(*level);
            const int n = qorv_bsw_size_ue(magnitude - 1) + 1, all = qorv_bsw_size_ue(zeros) + n;
            qorv_bsw_write(&bits->bsw, (zeros + 1) << n | magnitude << 1 | (*level < 0), all);
        }
    }
    return true;
}

bool code_syntax(const Codec *codec, Bits *bits, int row, int column, Block *block) {
    const uint32_t first_kind = codec->header.key ? DC : SKIP;
    block->kind = code_ue(bits, block->kind - first_kind) + first_kind;
    if (block->kind < first_kind || block->kind >= KINDS) return false;
    if (block->kind == INTER) {
        const int x = block->predicted.x + code_se(bits, block->vector.x - block->predicted.x);
        const int y = block->predicted.y + code_se(bits, block->vector.y - block->predicted.y);
        block->vector = vector_clamp(codec, row, column, x, y);
        if (block->vector.x != x || block->vector.y != y) return false;
    } else {
        block->vector = block->kind == SKIP ? block->predicted : (Vector){0, 0};
    }
    block->coded = block->kind == SKIP ? 0 : code_bits(bits, block->coded, 6);
    for (int tile = 0; tile < TILES; tile++) {
        if ((block->coded >> tile / 4 & 1) && !code_levels(bits, &block->counts[tile], block->levels[tile]))
            return false;
    }
    return true;
}
