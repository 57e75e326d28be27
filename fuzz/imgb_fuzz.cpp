// Pictures of any colour space, size, alignment and padding: created, filled, laid out again, expanded and hashed.
#include <cstring>

#include "input.h"
#include "qorv_skia.h"

using fuzz::Input;
using fuzz::require;

namespace {

struct Request {
    int32_t w, h;
    uint32_t cs, opt;
    uint32_t align[4], pad[4];
    bool aligned, padded;

    explicit Request(Input &input) {
        w = input.between(0, 70);
        h = input.between(0, 50);
        cs = static_cast<uint32_t>((input.byte() & 1) != 0 ? input.between(8, 66) : input.between(90, 610));
        opt = input.byte() & 3;
        // One alignment for all planes: expansion takes chroma sizes from the aligned luma size.
        const uint32_t alignment = QORV_IMGB_WORD(1 << input.between(0, 6), 1 << input.between(0, 4));
        for (int i = 0; i < 4; i++) {
            align[i] = alignment;
            const int32_t side = input.between(0, 20);
            pad[i] = QORV_IMGB_WORD(side, side);
        }
        aligned = (input.byte() & 1) != 0;
        padded = (input.byte() & 1) != 0;
    }
    const uint32_t *align_words() const { return aligned ? align : nullptr; }
    const uint32_t *pad_words() const { return padded ? pad : nullptr; }
};

void use(QORV_IMGB *imgb, const Request &request) {
    for (int i = 0; i < 4 && imgb->baddr[i] != nullptr; i++) {
        const size_t bytes = static_cast<size_t>(imgb->s[i]) * static_cast<size_t>(imgb->e[i]);
        std::memset(imgb->baddr[i], 0x40 + i, bytes);
    }
    static const uint32_t no_pad[4] = {};
    const int32_t expanded = qorv_imgb_expand(imgb, request.padded ? request.pad : no_pad);
    require(expanded == QORV_OK || expanded == QORV_ERR_UNSUPPORTED_CS, "expansion knows the colour space or not");
    uint8_t digest[16];
    if (imgb->cs == QORV_CS_YUV400 || imgb->cs == QORV_CS_YUV420) qorv_md5_imgb(imgb, digest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    const Request first(input);
    int32_t status = 1;
    QORV_IMGB *imgb = qorv_imgb_create(first.w, first.h, first.cs, first.opt, first.align_words(), first.pad_words(),
                                       nullptr, nullptr, &status);
    require((imgb != nullptr) == (status == QORV_OK), "a status tells of failure");
    if (imgb == nullptr) return 0;
    use(imgb, first);
    while (!input.empty()) {
        const Request again(input);
        const uint32_t bytes = imgb->bsize;
        if (qorv_imgb_rebirth(imgb, again.w, again.h, again.cs, again.opt, again.align_words(), again.pad_words()) ==
            QORV_OK) {
            use(imgb, again);
        }
        require(imgb->refcnt == 1 && imgb->bsize == bytes, "rebirth keeps count and block");
    }
    require(imgb->release(imgb) == 0, "the last release frees");
    return 0;
}
