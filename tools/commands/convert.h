// qorv convert: its options, and the four ways between streams and pictures.
#pragma once

#include <cstdint>
#include <string>

#include "tools/base/input.h"
#include "tools/base/report.h"
#include "tools/picture/picture_file.h"
#include "tools/video/reader.h"

namespace tool {

struct ConvertOptions : Verbosity {
    std::string in, out, to, layout, size, fps;
    VideoOptions video;
    uint64_t frame = 0;
    bool all = false;
    int quality = 90, threads = 1;
    // From the above:
    FileKind kind = FileKind::kUnknown;   // of the output
    bool every_frame = false;             // of a stream
    uint32_t width = 0, height = 0;       // of --size; 0: as it is
    uint32_t rate_num = 0, rate_den = 1;  // of --fps; 0: as it is
    bool many_out() const;                // numbered pictures are written
    bool many_in() const;                 // numbered pictures are read
};

// What was done, for the line at the end.
struct ConvertReport {
    uint64_t frames = 0;
    uint32_t width = 0, height = 0;
    std::string layout;  // of the converter; empty where there was none
    double seconds = 0;  // in the library's converters
};

ConvertReport video_to_pictures(VideoReader &reader, const ConvertOptions &options);
ConvertReport video_to_video(VideoReader &reader, const ConvertOptions &options);
// `input`: of the one picture; null where many are read.
ConvertReport pictures_to_video(Input *input, const ConvertOptions &options);
ConvertReport pictures_to_pictures(Input *input, const ConvertOptions &options);

}  // namespace tool
