/* Blocks: their prediction, the 4x4 transform of ITU-T H.264 for the rest, and its quantisation. */
#include "codec.h"
void quantiser_init(Codec *codec, int qp) {
    /* By qp % 6, of coefficients whose coordinates are both even, one odd, both odd. A step doubles every 6. */
    static const uint8_t steps[6][3] = {{10, 13, 16}, {11, 14, 18}, {13, 16, 20},
                                        {14, 18, 23}, {16, 20, 25}, {18, 23, 29}};
    static const int norms[3] = {262144, 209715, 167772}; /* (1 << 18) * {1, 4 / 5, 16 / 25} */
    for (int i = 0; i < 16; i++) {
        const int odd = (i & 1) + (i >> 2 & 1), step = steps[qp % 6][odd] << qp / 6, scale = norms[odd] / step;
        codec->step[i] = (int16_t)step;
        codec->scale[i] = (uint16_t)scale;
        codec->rounding[i] = (uint16_t)(65536 / 3 / scale + 1);
    }
}

/* Transforms columns, and writes them as rows: twice makes a whole transform. */
static inline void transform(const int32_t *restrict in, int32_t *restrict out) {
    for (int i = 0; i < 4; i++) {
        const int a = in[i] + in[12 + i], b = in[4 + i] + in[8 + i], c = in[4 + i] - in[8 + i], d = in[i] - in[12 + i];
        out[4 * i] = a + b;
        out[4 * i + 1] = 2 * d + c;
        out[4 * i + 2] = a - b;
        out[4 * i + 3] = d - 2 * c;
    }
}

static inline void transform_back(const int32_t *restrict in, int32_t *restrict out) {
    for (int i = 0; i < 4; i++) {
        const int32_t a = in[i] + in[8 + i], b = in[i] - in[8 + i];
        const int32_t c = (in[4 + i] >> 1) - in[12 + i], d = in[4 + i] + (in[12 + i] >> 1);
        out[4 * i] = a + d;
        out[4 * i + 1] = b + c;
        out[4 * i + 2] = b - c;
        out[4 * i + 3] = a - d;
    }
}

/* Makes levels, and counts those that are not 0. Not static: a compiler would unroll its loops in build_block()'s. */
uint32_t quantise(const Codec *codec, bool intra, int plane, int x, int y, int16_t *levels) {
    const uint8_t *predicted = sample_at(codec->current, plane, x, y), *source = sample_at(codec->source, plane, x, y);
    const int stride = codec->current->s[plane], source_stride = codec->source->s[plane];
    int32_t a[16], b[16];
    int16_t residual[16], count = 0, shift = intra ? 0 : 1; /* down more where predictions are likely good */
    /* No coefficient is larger than 4 times the sum of magnitudes, and those that large have the smallest scale. */
    const uint32_t largest = 4 * qorv_sad4x4(source, predicted, source_stride, stride);
    if ((largest + codec->rounding[5]) * codec->scale[5] < 1 << 16) return 0;
    qorv_diff4x4(source, predicted, source_stride, stride, 4, residual);
    for (int i = 0; i < 16; i++) a[i] = residual[i];
    transform(a, b);
    transform(b, a);
    for (int i = 0; i < 16; i++) {
        const int16_t coefficient = (int16_t)a[i];
        const uint16_t magnitude = (uint16_t)(abs(coefficient) + (codec->rounding[i] >> shift));
        const uint16_t level = (uint16_t)((uint32_t)magnitude * codec->scale[i] >> 16);
        levels[i] = (int16_t)(coefficient < 0 ? -level : level);
        count = (int16_t)(count + (level != 0));
    }
    return (uint32_t)count;
}

void reconstruct(const Codec *codec, const int16_t *levels, uint8_t *to, int stride) {
    int32_t a[16], b[16];
    uint8_t samples[16];
    for (int i = 0; i < 16; i++) a[i] = levels[i] * codec->step[i];
    transform_back(a, b);
    transform_back(b, a);
    for (int y = 0; y < 4; y++) memcpy(samples + 4 * y, to + y * stride, 4);
    for (int i = 0; i < 16; i++) {
        const int16_t value = (int16_t)(samples[i] + (int16_t)((a[i] + 32) >> 6));
        samples[i] = (uint8_t)(value < 0 ? 0 : value > 255 ? 255 : value);
    }
    for (int y = 0; y < 4; y++) memcpy(to + y * stride, samples + 4 * y, 4);
}

static int median(int a, int b, int c) {
    const int low = a < b ? a : b, high = a < b ? b : a;
    return c < low ? low : c > high ? high : c;
}

Vector vector_clamp(const Codec *codec, int row, int column, int x, int y) {
    const int left = -2 * (16 * column + REACH), right = 2 * (16 * (codec->columns - column - 1) + REACH);
    const int up = -2 * (16 * row + REACH), down = 2 * (16 * (codec->rows - row - 1) + REACH);
    return (Vector){(int16_t)median(left, x, right), (int16_t)median(up, y, down)};
}

/* Samples of the reference, or between them: x and y are quarters, and weigh the four neighbours. */
void predict_inter(const Codec *codec, int plane, int row, int column, Vector vector, uint8_t *to, int to_stride) {
    const int side = plane == 0 ? 16 : 8, scale = plane == 0 ? 2 : 1, x = scale * vector.x, y = scale * vector.y;
    const int stride = codec->reference->s[plane], right = x & 3, down = y & 3;
    const uint8_t a = (uint8_t)((4 - right) * (4 - down)), b = (uint8_t)(right * (4 - down));
    const uint8_t c = (uint8_t)((4 - right) * down), d = (uint8_t)(right * down);
    const uint8_t *restrict from = sample_at(codec->reference, plane, side * column + (x >> 2), side * row + (y >> 2));
    if (a == 16) qorv_mcpy_blk(to, from, to_stride, stride, side, side);
    for (int j = 0; a < 16 && j < side; j++, from += stride, to += to_stride) {
        const uint8_t *below = from + stride, *other = right > 0 ? from + 1 : below;
        const int means = a == 8 && d == 0 ? side : 0; /* as most often: the same for less */
        for (int i = 0; i < means; i++) to[i] = (uint8_t)((from[i] + other[i] + 1) >> 1);
        for (int i = means; i < side; i++)
            to[i] = (uint8_t)((uint16_t)(a * from[i] + b * from[i + 1] + c * below[i] + d * below[i + 1] + 8) >> 4);
    }
}

void predict_intra(uint32_t kind, const uint8_t *beside, int beside_stride, uint8_t *to, int to_stride) {
    const uint8_t *above = beside - beside_stride;
    int sum = 4;
    for (int i = 0; kind == DC && i < 4; i++) sum += above[i] + beside[i * beside_stride - 1];
    for (int row = 0; row < 4; row++, to += to_stride, beside += beside_stride) {
        if (kind == VERTICAL) memcpy(to, above, 4);
        if (kind != VERTICAL) memset(to, kind == DC ? sum >> 3 : beside[-1], 4);
    }
}

void build_block(Codec *codec, int row, int column, Block *block) {
    const bool intra = block->kind >= DC;
    if (codec->encoding) block->coded = 0;
    for (int plane = 0, side = 16; !intra && plane < 3; plane++, side = 8) {
        uint8_t *samples = sample_at(codec->current, plane, side * column, side * row);
        predict_inter(codec, plane, row, column, block->vector, samples, codec->current->s[plane]);
    }
    if (!intra && !codec->encoding && block->coded == 0) return;
    for (int tile = 0; tile < TILES; tile++) { /* in z-order, of the quarters and within them */
        const int plane = (tile >= 16) + (tile >= 20), side = plane == 0 ? 16 : 8, i = plane == 0 ? tile : tile & 3;
        const int x = side * column + 4 * ((i & 1) | (i >> 1 & 2)), y = side * row + 4 * ((i >> 1 & 1) | (i >> 2 & 2));
        const int stride = codec->current->s[plane];
        uint8_t *samples = sample_at(codec->current, plane, x, y);
        if (intra) predict_intra(block->kind, samples, stride, samples, stride);
        if (codec->encoding) {
            block->counts[tile] = quantise(codec, intra, plane, x, y, block->levels[tile]);
            block->coded |= (block->counts[tile] > 0 ? 1u : 0u) << tile / 4;
        }
        if ((block->coded >> tile / 4 & 1) == 0 || block->counts[tile] == 0) continue;
        reconstruct(codec, block->levels[tile], samples, stride);
    }
}

bool code_block(Codec *codec, int row, int column) {
    const Vector *above = &codec->vectors[row][column + 1], *here = &codec->vectors[row + 1][column + 1];
    Block block;
    block.predicted = vector_clamp(codec, row, column, median(here[-1].x, above[0].x, above[1].x),
                                   median(here[-1].y, above[0].y, above[1].y));
    if (codec->encoding) decide_block(codec, row, column, &block);
    if (!code_syntax(codec, &codec->bits[row], row, column, &block)) return false;
    if (!codec->encoding) build_block(codec, row, column, &block);
    codec->vectors[row + 1][column + 1] = block.vector;
    return column < codec->columns - 1 || bits_end(&codec->bits[row]);
}
