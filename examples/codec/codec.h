/* qcodec, a small hybrid video codec on libqorv_skia: what its parts know of one another.
 *
 * A stream is a sequence of units. Each begins with 00 00 01 and a type byte; its payload is bits, ended by a one and
 * zeros up to the byte boundary, with a 03 put before every byte below 4 that follows two zero bytes.
 *   S  sequence, code_header(): stands before every key picture, so that decoding can begin there.
 *   P  picture, code_header(): all its rows follow. E  end.
 *   R  row of 16x16 blocks, code_syntax(): rows are coded side by side, each some blocks behind the one above. */
#pragma once
#include <pthread.h>
#include <qorv_skia.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* GROUP: blocks of a row between two messages to the row below. REACH: samples of a block outside, in the padding. */
enum { MAX_SIDE = 4096, MAX_BLOCKS = MAX_SIDE / 16, GROUP = 4, REACH = 24, MAX_THREADS = 64, MAX_QP = 51 };
enum { SKIP, INTER, DC, HORIZONTAL, VERTICAL, KINDS }; /* of blocks; intra from DC on */
enum { TILES = 24 };                                   /* 4x4 blocks in a block: 4 for each luma quarter, Cb and Cr */

typedef struct {
    int32_t width, height; /* 0: no sequence yet */
    uint32_t rate_num, rate_den, number, key, qp;
    uint8_t md5[16]; /* of the decoded picture */
} Header;
typedef struct {
    int16_t x, y; /* half samples */
} Vector;
typedef struct {
    uint32_t kind, cost, coded; /* cost: the encoder's; coded: a bit for each four tiles that have levels */
    Vector predicted, vector;
    uint32_t counts[TILES]; /* levels that are not 0 */
    int16_t levels[TILES][16];
} Block;
typedef struct {
    union { /* first: its address is what the library hands to refill */
        QORV_BSW bsw;
        QORV_BSR bsr;
    };
    bool reading;
    int zeros; /* zero bytes just read */
} Bits;
typedef struct {
    int type;
    int32_t size, offset; /* of the payload; the offset is that of the start code */
    const uint8_t *payload;
} Unit;
typedef void (*Sink)(void *to, const void *bytes, size_t n);
typedef struct {
    bool encoding; /* the caller sets these, and `source` or `stream` */
    int threads, key_interval, qp;
    const uint8_t *stream;    /* of a decoder */
    int32_t size, at, offset; /* offset: of the last picture or of what is wrong */
    const char *error;        /* what is wrong, or null */
    bool ended;               /* the stream has said so */
    Header header;            /* of the current picture */
    int columns, rows;        /* of blocks */
    int16_t step[16];         /* coefficient = level * step */
    uint16_t scale[16];       /* |level| = (|coefficient| + rounding) * scale >> 16 */
    uint16_t rounding[16];    /* of intra blocks; half of it for others */
    uint32_t lambda;          /* cost of a bit */
    QORV_RLIST *pool;         /* places of pictures, see picture_take() */
    QORV_IMGB *source, *current, *reference;
    Unit units[MAX_BLOCKS];                               /* rows, where a decoder reads them */
    Bits bits[MAX_BLOCKS];                                /* of the rows */
    QORV_BITB *bytes;                                     /* room for all rows that an encoder writes */
    Vector vectors[MAX_BLOCKS + 1][MAX_BLOCKS + 2];       /* [row + 1][column + 1], with a frame of zeros */
    int32_t progress[MAX_BLOCKS + 1][MAX_BLOCKS / GROUP]; /* [row + 1][group]: 1 when done, -1 when given up */
    int32_t next_row;
} Codec;
typedef struct { /* a file that a thread of its own writes, out of a ring */
    FILE *file;
    QORV_RBUF *ring;
    pthread_t thread;
    pthread_mutex_t lock; /* of the ring and what follows */
    pthread_cond_t changed;
    bool closing, failed;
} Output;

static inline uint8_t *sample_at(const QORV_IMGB *picture, int plane, int x, int y) {
    return (uint8_t *)picture->a[plane] + (ptrdiff_t)y * picture->s[plane] + x;
}
/* stream.c: the code_ functions write or read, as the bits do; false for what cannot be */
void write_begin(Bits *bits, void *buffer, int32_t size, int type);
void read_begin(Bits *bits, const Unit *unit);
bool bits_end(Bits *bits);
void write_escaped(const Bits *bits, Sink sink, void *to); /* a unit that has ended */
bool next_unit(const uint8_t *stream, int32_t size, int32_t *at, Unit *unit);
bool code_header(Bits *bits, Header *header, int type);
bool code_syntax(const Codec *codec, Bits *bits, int row, int column, Block *block);
/* block.c */
void quantiser_init(Codec *codec, int qp);
uint32_t quantise(const Codec *codec, bool intra, int plane, int x, int y, int16_t *levels);
void reconstruct(const Codec *codec, const int16_t *levels, uint8_t *samples, int stride);
Vector vector_clamp(const Codec *codec, int row, int column, int x, int y);
void predict_inter(const Codec *codec, int plane, int row, int column, Vector vector, uint8_t *to, int stride);
void predict_intra(uint32_t kind, const uint8_t *beside, int beside_stride, uint8_t *to, int to_stride);
void build_block(Codec *codec, int row, int column, Block *block); /* samples; and levels, in an encoder */
bool code_block(Codec *codec, int row, int column);
/* codec.c */
QORV_IMGB *picture_take(Codec *codec);
void picture_release(QORV_IMGB **picture);
bool codec_start(Codec *codec);               /* for pictures of the header's size; false: no memory */
int codec_run(Codec *codec, uint8_t md5[16]); /* makes the next reference: rows up to a bad one, or -1: no memory */
void codec_stop(Codec *codec);
/* encoder.c */
void decide_block(Codec *codec, int row, int column, Block *block);
bool encode_picture(Codec *codec, Sink sink, void *to); /* of codec->source; false: no memory */
void encode_unit(Codec *codec, int type, Sink sink, void *to);
/* decoder.c: of codec->stream */
bool decode_next(Codec *codec);                  /* makes a reference or an error; false: the end */
void decode_from(Codec *codec, uint32_t number); /* the last key picture up to that number */
/* files.c: false for what cannot be */
bool y4m_read_header(FILE *file, Header *header);
bool y4m_copy_picture(FILE *from, QORV_IMGB *picture, Output *to); /* one way, the other file null; false at its end */
bool output_open(Output *output, const char *path);
void output_write(void *output, const void *bytes, size_t n); /* a Sink */
bool output_close(Output *output);
bool preview_write(const QORV_IMGB *picture, int width, int height, const char *path); /* as PPM */
