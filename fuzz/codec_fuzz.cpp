// The decoder of examples/codec: streams of small pictures, whole or broken.
#include <memory>

#include "input.h"

extern "C" {
#include "codec.h"
}

// Large pictures only take time.
static bool is_small(const uint8_t *data, int32_t size) {
    Unit unit;
    Bits bits;
    Header header = {};
    for (int32_t at = 0; next_unit(data, size, &at, &unit);) {
        read_begin(&bits, &unit);
        if (unit.type == 'S' && code_header(&bits, &header, 'S') && header.width * header.height > 128 * 128)
            return false;
    }
    return true;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 1 || size > 1 << 20 || !is_small(data, static_cast<int32_t>(size))) return 0;
    const std::vector<uint8_t> stream(data, data + size);
    const auto codec = std::make_unique<Codec>();
    codec->threads = 1 + stream.back() % 2;
    codec->stream = stream.data();
    codec->size = static_cast<int32_t>(size);
    decode_from(codec.get(), stream.front() % 4);
    size_t steps = 0;
    while (decode_next(codec.get())) {
        fuzz::require((codec->error == nullptr) == (codec->reference != nullptr), "a picture, or an error");
        fuzz::require(steps++ <= size, "decoding ends");
    }
    codec_stop(codec.get());
    return 0;
}
