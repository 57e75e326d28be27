// Between frames of video and pictures, through the library's converters and one of their RGB layouts.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qorv_skia.h"
#include "tools/picture/picture.h"
#include "tools/picture/pixel_format.h"
#include "tools/video/format.h"
#include "tools/video/full_planes.h"

namespace tool {

// How a stream's frames become pictures.
struct FrameConversion {
    const PixelFormat *pixels;
    int32_t cs;  // of the planes
    uint32_t width, height;
    qorv_csc_fn convert;
};

// `layout` is a name or empty for the best that fits, sizes are those of the picture. Throws an Error that lists the
// layouts there are when there is no converter to the one that is asked for.
FrameConversion choose_conversion(const std::string &path, const VideoFormat &format, const std::string &layout,
                                  uint32_t width, uint32_t height);

// Keeps its memory from frame to frame; takes none before the first frame is there.
class FrameConverter {
public:
    FrameConverter(const VideoFormat &format, const FrameConversion &conversion)
        : format_(format), conversion_(conversion) {}

    Picture convert(const std::vector<uint8_t> &frame);
    double seconds() const { return seconds_; }  // spent in the library's converter

private:
    const VideoFormat &format_;
    FrameConversion conversion_;
    std::unique_ptr<FullPlanes> planes_;
    std::unique_ptr<RgbPicture> rgb_;
    double seconds_ = 0;
};

// How pictures of a size become frames: 4:4:4, with alpha or of 10 bits where the layout is so.
struct PictureConversion {
    const PixelFormat *pixels;
    int32_t cs;
    qorv_csc_fn convert;
};
PictureConversion choose_picture_conversion(const Picture &picture, const std::string &layout);

VideoFormat format_of_frames(const PictureConversion &conversion, uint32_t width, uint32_t height, uint32_t rate_num,
                             uint32_t rate_den);

class PictureConverter {
public:
    explicit PictureConverter(const PictureConversion &conversion) : conversion_(conversion) {}

    // The samples of a frame, plane after plane.
    std::vector<uint8_t> convert(const Picture &picture);
    double seconds() const { return seconds_; }

private:
    PictureConversion conversion_;
    double seconds_ = 0;
};

}  // namespace tool
