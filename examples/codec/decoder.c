/* The decoder. What a stream says is believed only as far as the next check: sizes up to what the caller allows, and no
 * memory for a picture before all of its rows are there. */
#include "codec.h"
void decode_from(Codec *codec, uint32_t number) {
    Unit unit;
    Header header = {0};
    Bits bits;
    for (int32_t at = 0, sequence = 0; next_unit(codec->stream, codec->size, &at, &unit);) {
        if (unit.type == 'S') sequence = unit.offset;
        read_begin(&bits, &unit);
        if (!code_header(&bits, &header, unit.type) || unit.type != 'P') continue;
        if (header.key && header.number <= number) codec->at = sequence;
    }
}

static const char *take_sequence(Codec *codec, const Header *header) {
    const bool same = codec->header.width == header->width && codec->header.height == header->height;
    codec->header = *header;
    if (same || codec_start(codec)) return NULL;
    codec->header.width = 0;
    return "there is not enough memory";
}

static const char *take_picture(Codec *codec, const Header *header) {
    uint8_t md5[16];
    codec->header = *header;
    for (int row = 0; row < codec->rows; row++) {
        int32_t after = codec->at;
        Unit *unit = &codec->units[row];
        if (!next_unit(codec->stream, codec->size, &after, unit) || unit->type != 'R') return "a row is missing";
        codec->at = after;
    }
    if (!header->key && codec->reference == NULL) return "the picture that it builds on is missing";
    const int good = codec_run(codec, md5);
    if (good < 0) return "there is not enough memory";
    if (good == codec->rows) return memcmp(md5, header->md5, 16) == 0 ? NULL : "its MD5 is not the one encoded";
    codec->offset = codec->units[good].offset;
    return "a row is damaged";
}

bool decode_next(Codec *codec) {
    Unit unit = {0};
    Bits bits;
    codec->error = NULL;
    while (codec->error == NULL && unit.type != 'P' && next_unit(codec->stream, codec->size, &codec->at, &unit)) {
        if (unit.type == 'R' && codec->reference == NULL) continue; /* of a picture that is lost */
        Header header = codec->header;
        codec->offset = unit.offset;
        codec->ended = unit.type == 'E';
        read_begin(&bits, &unit);
        if (unit.type == 'R' || !code_header(&bits, &header, unit.type))
            codec->error = "a header is damaged, or missing";
        else if (unit.type == 'S')
            codec->error = take_sequence(codec, &header);
        else if (unit.type == 'P')
            codec->error = take_picture(codec, &header);
    }
    if (codec->error == NULL && unit.type != 'P') {
        if (codec->ended) return false;
        codec->error = "the stream ends early";
        codec->ended = true;
    }
    if (codec->error != NULL) picture_release(&codec->reference); /* only a key picture helps now */
    return true;
}
