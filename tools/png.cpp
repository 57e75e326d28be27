#include "tools/png.h"

#include <png.h>

#include "tools/command.h"
#include "tools/output.h"

namespace tool {

namespace {

constexpr uint32_t kMaxSide = 32768;  // pixels

png_uint_32 format_of(int channels) {
    return channels == 1 ? PNG_FORMAT_GRAY : channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
}

// libpng's simplified interface keeps its state here; freed on every way out.
struct Png : png_image {
    Png() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~Png() { png_image_free(this); }
    Png(const Png &) = delete;
    Png &operator=(const Png &) = delete;
};

}  // namespace

PngImage read_png(const std::string &path) {
    Png png;
    if (png_image_begin_read_from_file(&png, path.c_str()) == 0) {
        throw Error(path + ": cannot be read as PNG: " + png.message);
    }
    if (png.width > kMaxSide || png.height > kMaxSide) {
        throw Error(path + ": absurd size " + std::to_string(png.width) + "x" + std::to_string(png.height) +
                    " (at most 32768 a side)");
    }
    PngImage image;
    image.width = png.width;
    image.height = png.height;
    image.channels = (png.format & PNG_FORMAT_FLAG_ALPHA) != 0 ? 4 : (png.format & PNG_FORMAT_FLAG_COLOR) != 0 ? 3 : 1;
    image.pixels.resize(image.row_bytes() * image.height);
    png.format = format_of(image.channels);
    if (png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr) == 0) {
        throw Error(path + ": cannot be read as PNG: " + png.message);
    }
    return image;
}

void write_png(const std::string &path, const PngImage &image) {
    Png png;
    png.width = image.width;
    png.height = image.height;
    png.format = format_of(image.channels);
    write_file(path, [&](std::FILE *file) {
        const bool done = png_image_write_to_stdio(&png, file, 0, image.pixels.data(), 0, nullptr) != 0;
        return std::string(done ? "" : png.message);
    });
}

}  // namespace tool
