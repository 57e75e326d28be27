// Formats of uncompressed video, as Y4M streams name them and as raw planes come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

enum class Range : uint8_t { kFull, kLimited };

// How many luma samples lie between two chroma samples along an axis, and where the first chroma sample lies, in luma
// samples: 0 on the first one, 0.5 between the first two.
struct ChromaAxis {
    uint32_t step = 1;  // 0: there is no chroma
    double first = 0;
};

struct VideoPlane {
    uint32_t width = 0, height = 0;  // in samples
    size_t offset = 0;               // of its first byte in a frame
};

struct VideoFormat {
    uint32_t width = 0, height = 0;  // in pixels
    std::string name;                // a Y4M tag ("420jpeg"), or what raw planes are called ("yuv420p")
    std::string chroma;              // "mono", "420", "422", "444", "411" or "440"
    ChromaAxis horizontal, vertical;
    bool alpha = false;  // a fourth plane of the luma's size
    Range range = Range::kFull;
    int bits = 8;                          // significant bits; above 8, samples are little-endian 16-bit words
    uint32_t rate_num = 25, rate_den = 1;  // frames a second
    std::string header = "YUV4MPEG2";      // the stream header's words but for those of size
    std::vector<VideoPlane> planes;
    size_t frame_bytes = 0;  // of the samples of one frame, plane after plane without padding

    size_t sample_bytes() const { return bits > 8 ? 2 : 1; }
};

// Sets what a Y4M chroma tag tells, the range that such a stream has without a word included: limited where chroma is
// subsampled. False for tags that are not known, whatever they begin with.
bool set_y4m_chroma(VideoFormat &format, const std::string &tag);

// The same for FFmpeg's names of planar formats: "yuv420p", "yuvj444p", "gray10le", "yuva444p".
bool set_raw_pixels(VideoFormat &format, const std::string &name);

// Sets the planes and the frame's bytes from size and chroma.
void lay_out(VideoFormat &format);

// Gives a word of the header, found by what it begins with ("F", "XCOLORRANGE="), another value, or adds it.
void set_header_word(VideoFormat &format, const std::string &begin, const std::string &value);

// The header line of a Y4M stream, line feed included.
std::string y4m_header(const VideoFormat &format);

}  // namespace tool
