// PNG through libpng's row interface: what is read grows as the rows come.
#include <png.h>

#include <csetjmp>

#include "tools/base/error.h"
#include "tools/base/limits.h"
#include "tools/picture/picture_file.h"

namespace tool {

namespace {

// libpng leaves by longjmp, which must not pass objects with destructors. So callbacks note exceptions here, and the
// functions between setjmp and libpng hold nothing.
struct Coding {
    png_structp png = nullptr;
    png_infop info = nullptr;
    Input *input = nullptr;
    std::vector<uint8_t> written;
    std::string reason;
    std::exception_ptr failure;

    Coding() = default;
    Coding(const Coding &) = delete;
    Coding &operator=(const Coding &) = delete;
};

[[noreturn]] void on_error(png_structp png, png_const_charp message) {
    auto &coding = *static_cast<Coding *>(png_get_error_ptr(png));
    try {
        coding.reason = message;
    } catch (...) {
        coding.failure = std::current_exception();
    }
    png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

void read_bytes(png_structp png, png_bytep to, size_t bytes) {
    auto &coding = *static_cast<Coding *>(png_get_io_ptr(png));
    bool whole = false;
    try {
        whole = coding.input->read(to, bytes) == bytes;
    } catch (...) {
        coding.failure = std::current_exception();
    }
    if (!whole) png_error(png, "the file is truncated");
}

void write_bytes(png_structp png, png_bytep from, size_t bytes) {
    auto &coding = *static_cast<Coding *>(png_get_io_ptr(png));
    try {
        coding.written.insert(coding.written.end(), from, from + bytes);
        return;
    } catch (...) {
        coding.failure = std::current_exception();
    }
    png_error(png, "memory");
}

void flush_nothing(png_structp) {}

// Runs `step`, which calls libpng; false when that has failed.
template <class Step>
bool run(Coding &coding, Step step) {
    if (setjmp(png_jmpbuf(coding.png)) != 0) return false;
    step();
    return true;
}

[[noreturn]] void fail(const Coding &coding, const std::string &what) {
    if (coding.failure) std::rethrow_exception(coding.failure);
    throw Error(what + coding.reason);
}

struct Reading : Coding {
    explicit Reading(Input &from) {
        input = &from;
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, static_cast<Coding *>(this), on_error, on_warning);
        info = png == nullptr ? nullptr : png_create_info_struct(png);
        if (info == nullptr) throw std::bad_alloc();
        png_set_read_fn(png, static_cast<Coding *>(this), read_bytes);
    }
    ~Reading() { png_destroy_read_struct(&png, &info, nullptr); }
    Reading(const Reading &) = delete;
    Reading &operator=(const Reading &) = delete;
};

struct Writing : Coding {
    Writing() {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, static_cast<Coding *>(this), on_error, on_warning);
        info = png == nullptr ? nullptr : png_create_info_struct(png);
        if (info == nullptr) throw std::bad_alloc();
        png_set_write_fn(png, static_cast<Coding *>(this), write_bytes, flush_nothing);
    }
    ~Writing() { png_destroy_write_struct(&png, &info); }
    Writing(const Writing &) = delete;
    Writing &operator=(const Writing &) = delete;
};

// Samples as they are, whatever the file says of gamma: 8 bits, palettes as RGB or RGBA, gray with alpha as RGBA.
void ask_for_8_bits(png_structp png, png_infop info, size_t &coded_row_bytes) {
    png_read_info(png, info);
    coded_row_bytes = png_get_rowbytes(png, info);
    png_set_scale_16(png);
    png_set_expand(png);
    if ((png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png, info, PNG_INFO_tRNS) != 0) {
        png_set_gray_to_rgb(png);
    }
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
}

// Compressed data grow by a factor of 1032 at the most, so that a size which the data cannot fill is found out before
// any memory is taken for it. Otherwise memory is taken as the rows come; an interlaced picture needs all at once.
void check_growth(const Input &input, const std::string &what, uint64_t coded, uint64_t shown, bool interlaced) {
    constexpr uint64_t kMostGrowth = 1032, kAlwaysFits = 1 << 26;
    const std::optional<uint64_t> size = input.size();
    if (size && coded / kMostGrowth > *size) throw Error(what + "the file is truncated");
    if (interlaced && shown > kAlwaysFits && (!size || shown / kMostGrowth > *size)) {
        throw Error(what + "too large to be read interlaced");
    }
}

}  // namespace

Picture read_png(Input &input, const RowReport &report) {
    Reading reading(input);
    const std::string what = input.path() + ": cannot be read as PNG: ";
    size_t coded_row_bytes = 0;
    if (!run(reading, [&] { ask_for_8_bits(reading.png, reading.info, coded_row_bytes); })) fail(reading, what);
    Picture picture = {png_get_image_width(reading.png, reading.info),
                       png_get_image_height(reading.png, reading.info),
                       png_get_channels(reading.png, reading.info),
                       {}};
    check_sides(input.path(), picture.width, picture.height);
    const bool interlaced = png_get_interlace_type(reading.png, reading.info) != PNG_INTERLACE_NONE;
    check_growth(input, what, uint64_t{picture.height} * coded_row_bytes, picture.height * picture.row_bytes(),
                 interlaced);
    if (interlaced) picture.pixels.resize(picture.row_bytes() * picture.height);
    for (int pass = interlaced ? 7 : 1; pass > 0; pass--) {
        for (uint32_t y = 0; y < picture.height; y++) {
            if (!interlaced) picture.pixels.resize((y + 1) * picture.row_bytes());
            uint8_t *const row = &picture.pixels[y * picture.row_bytes()];
            if (!run(reading, [&] { png_read_row(reading.png, row, nullptr); })) fail(reading, what);
            if (report) report(y, picture.height);
        }
    }
    if (!run(reading, [&] { png_read_end(reading.png, nullptr); })) fail(reading, what);
    return picture;
}

std::vector<uint8_t> encode_png(const Picture &picture, const RowReport &report) {
    Writing writing;
    const int colour = picture.channels == 1   ? PNG_COLOR_TYPE_GRAY
                       : picture.channels == 3 ? PNG_COLOR_TYPE_RGB
                                               : PNG_COLOR_TYPE_RGB_ALPHA;
    const std::string what = "cannot be written as PNG: ";
    if (!run(writing, [&] {
            png_set_IHDR(writing.png, writing.info, picture.width, picture.height, 8, colour, PNG_INTERLACE_NONE,
                         PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            png_write_info(writing.png, writing.info);
        })) {
        fail(writing, what);
    }
    for (uint32_t y = 0; y < picture.height; y++) {
        if (!run(writing, [&] { png_write_row(writing.png, &picture.pixels[y * picture.row_bytes()]); })) {
            fail(writing, what);
        }
        if (report) report(y, picture.height);
    }
    if (!run(writing, [&] { png_write_end(writing.png, writing.info); })) fail(writing, what);
    return std::move(writing.written);
}

}  // namespace tool
