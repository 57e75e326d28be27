// JPEG through libjpeg-turbo.
#include <cstdio>  // jpeglib.h needs FILE

#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>

#include "tools/base/error.h"
#include "tools/base/limits.h"
#include "tools/picture/picture_file.h"

namespace tool {

namespace {

// libjpeg leaves by longjmp, which must not pass objects with destructors: the functions between setjmp and it hold
// none.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf leave;
    char reason[JMSG_LENGTH_MAX];
};

[[noreturn]] void on_error(j_common_ptr common) {
    auto *const manager = reinterpret_cast<ErrorManager *>(common->err);
    manager->base.format_message(common, manager->reason);
    std::longjmp(manager->leave, 1);
}

// A warning (level -1) means damaged or missing data, for which the library would make up a gray picture of any size.
void on_message(j_common_ptr common, int level) {
    if (level < 0) on_error(common);
}

void ignore(j_common_ptr) {}

jpeg_error_mgr *set_up(ErrorManager &manager) {
    jpeg_error_mgr *const base = jpeg_std_error(&manager.base);
    base->error_exit = on_error;
    base->emit_message = on_message;
    base->output_message = ignore;
    return base;
}

template <class Step>
void run(ErrorManager &manager, const std::string &what, Step step) {
    if (setjmp(manager.leave) != 0) throw Error(what + manager.reason);
    step();
}

struct Decoder : jpeg_decompress_struct {
    explicit Decoder(ErrorManager &manager) : jpeg_decompress_struct{} {
        err = set_up(manager);
        jpeg_create_decompress(this);
    }
    ~Decoder() { jpeg_destroy_decompress(this); }
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;
};

struct Encoder : jpeg_compress_struct {
    explicit Encoder(ErrorManager &manager) : jpeg_compress_struct{} {
        err = set_up(manager);
        jpeg_create_compress(this);
    }
    ~Encoder() {
        jpeg_destroy_compress(this);
        std::free(coded);
    }
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;

    unsigned char *coded = nullptr;
    unsigned long size = 0;
};

// A block of 8x8 coefficients takes a bit at the least, so that a size which the data cannot fill is found out before
// the library takes memory for it.
void check_size(const Decoder &decoder, const std::string &path, size_t file_bytes) {
    check_sides(path, decoder.image_width, decoder.image_height);
    if (decoder.arith_code != FALSE) throw Error(path + ": arithmetic coding of JPEG is not read");
    const uint64_t blocks = ((uint64_t{decoder.image_width} + 7) / 8) * ((decoder.image_height + 7) / 8);
    if (blocks / 8 > file_bytes) throw Error(path + ": cannot be read as JPEG: the file is truncated");
}

J_COLOR_SPACE colours_to_read(const Decoder &decoder) {
    if (decoder.num_components == 1) return JCS_GRAYSCALE;
    return decoder.num_components == 4 ? JCS_CMYK : JCS_RGB;
}

// CMYK as every writer stores it, inverted: 255 is no ink.
void cmyk_to_rgb(const std::vector<uint8_t> &cmyk, uint8_t *rgb, uint32_t width) {
    for (uint32_t x = 0; x < width; x++) {
        for (size_t c = 0; c < 3; c++) {
            rgb[3 * x + c] = static_cast<uint8_t>((cmyk[4 * x + c] * cmyk[4 * x + 3] + 127) / 255);
        }
    }
}

}  // namespace

Picture read_jpeg(Input &input, const RowReport &report) {
    const std::vector<uint8_t> data = input.read_all();
    const std::string what = input.path() + ": cannot be read as JPEG: ";
    ErrorManager manager;
    Decoder decoder(manager);
    run(manager, what, [&] {
        jpeg_mem_src(&decoder, data.data(), data.size());
        jpeg_read_header(&decoder, TRUE);
        decoder.out_color_space = colours_to_read(decoder);
    });
    check_size(decoder, input.path(), data.size());
    run(manager, what, [&] { jpeg_start_decompress(&decoder); });
    const bool cmyk = decoder.out_color_space == JCS_CMYK;
    Picture picture = {decoder.output_width, decoder.output_height, decoder.num_components == 1 ? 1 : 3, {}};
    std::vector<uint8_t> inks(cmyk ? size_t{4} * picture.width : 0);
    for (uint32_t y = 0; y < picture.height; y++) {
        picture.pixels.resize((y + 1) * picture.row_bytes());
        uint8_t *const row = &picture.pixels[y * picture.row_bytes()];
        uint8_t *to = cmyk ? inks.data() : row;
        run(manager, what, [&] { jpeg_read_scanlines(&decoder, &to, 1); });
        if (cmyk) cmyk_to_rgb(inks, row, picture.width);
        if (report) report(y, picture.height);
    }
    run(manager, what, [&] { jpeg_finish_decompress(&decoder); });
    return picture;
}

std::vector<uint8_t> encode_jpeg(const Picture &picture, int quality, const RowReport &report) {
    const std::string what = "cannot be written as JPEG: ";
    ErrorManager manager;
    Encoder encoder(manager);
    run(manager, what, [&] {
        jpeg_mem_dest(&encoder, &encoder.coded, &encoder.size);
        encoder.image_width = picture.width;
        encoder.image_height = picture.height;
        encoder.input_components = picture.channels;
        encoder.in_color_space = picture.channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&encoder);
        jpeg_set_quality(&encoder, quality, TRUE);
        jpeg_start_compress(&encoder, TRUE);
    });
    for (uint32_t y = 0; y < picture.height; y++) {
        auto *row = const_cast<uint8_t *>(&picture.pixels[y * picture.row_bytes()]);
        run(manager, what, [&] { jpeg_write_scanlines(&encoder, &row, 1); });
        if (report) report(y, picture.height);
    }
    run(manager, what, [&] { jpeg_finish_compress(&encoder); });
    return {encoder.coded, encoder.coded + encoder.size};
}

}  // namespace tool
