// qorv keyframes: the key frames of an AVI file, by their data and by the container's index.
#include <cstdio>

#include "qorv_skia.h"
#include "tools/avi.h"
#include "tools/command.h"

namespace tool {

namespace {

struct Options {
    std::string in;
    bool list = false;
};

struct TypeName {
    int32_t id;
    const char *name;
};

constexpr TypeName kTypeNames[] = {
    {QORV_MT_VID_MPEG4, "MPEG-4 part 2"},
    {QORV_MT_VID_H263, "H.263"},
    {QORV_MT_VID_H264, "H.264"},
    {QORV_MT_VID_WMV1, "Windows Media Video 7"},
    {QORV_MT_VID_WMV2, "Windows Media Video 8"},
    {QORV_MT_VID_WMV3, "Windows Media Video 9"},
    {QORV_MT_VID_DIV3, "MS-MPEG-4 version 3"},
    {QORV_MT_VID_RV10, "RealVideo 1"},
    {QORV_MT_VID_RV20, "RealVideo 2"},
    {QORV_MT_VID_RV30, "RealVideo 3"},
    {QORV_MT_VID_RV40, "RealVideo 4"},
    {QORV_MT_VID_MP43, "MS-MPEG-4 version 3 (MP43)"},
    {QORV_MT_VID_VC1, "VC-1"},
    {QORV_MT_VID_VP8, "VP8"},
    {QORV_MT_VID_HEVC, "HEVC"},
    {QORV_MT_VID_HFYU, "HuffYUV"},
    {QORV_MT_AUD_PCM, "PCM"},
    {QORV_MT_AUD_ALAW, "A-law"},
    {QORV_MT_AUD_MULAW, "mu-law"},
    {QORV_MT_AUD_MPEG, "MPEG audio layer 1 or 2"},
    {QORV_MT_AUD_MP3, "MP3"},
    {QORV_MT_AUD_AAC, "AAC"},
    {QORV_MT_AUD_AC3, "AC-3"},
    {QORV_MT_AUD_DTS, "DTS"},
    {QORV_MT_AUD_WMA, "Windows Media Audio"},
    {QORV_MT_AUD_WMA_PRO, "Windows Media Audio Professional"},
    {QORV_MT_AUD_WMA_LOSSLESS, "Windows Media Audio Lossless"},
};

const char *type_name(int32_t id) {
    for (const TypeName &known : kTypeNames) {
        if (known.id == id) return known.name;
    }
    return "unknown";
}

// Some writers leave the code out of the format and give it as the stream's handler.
int32_t video_type(const AviStream &stream) {
    const int32_t id = qorv_fcc2mt_vid(stream.codec);
    return id != QORV_MT_VID_UNKNOWN ? id : qorv_fcc2mt_vid(stream.handler);
}

void print_stream(size_t number, const AviStream &stream) {
    if (stream.is_video()) {
        const int32_t id = video_type(stream);
        std::printf("stream %zu: video '%s', media type %d (%s), %dx%d, %u/%u frames a second\n", number,
                    fourcc_text(stream.codec).c_str(), id, type_name(id), stream.width, stream.height, stream.rate,
                    stream.scale);
    } else if (stream.is_audio()) {
        const int32_t id = qorv_fcc2mt_aud(stream.codec);
        std::printf("stream %zu: audio, WAVE tag %u, media type %d (%s), %u Hz, %u channels\n", number, stream.codec,
                    id, type_name(id), stream.sample_rate, stream.channels);
    } else {
        std::printf("stream %zu: '%s'\n", number, fourcc_text(stream.type).c_str());
    }
}

size_t first_video(const AviReader &reader, const std::string &path) {
    for (size_t i = 0; i < reader.streams().size(); i++) {
        if (reader.streams()[i].is_video()) return i;
    }
    throw Error(path + ": has no video stream");
}

struct Totals {
    size_t frames = 0, by_data = 0, by_index = 0, agree = 0, differ = 0, unindexed = 0;

    void add(bool key, AviFrame::Index index) {
        frames++;
        by_data += key;
        by_index += index == AviFrame::Index::kKey;
        if (index == AviFrame::Index::kNone) {
            unindexed++;
        } else if (key == (index == AviFrame::Index::kKey)) {
            agree++;
        } else {
            differ++;
        }
    }
};

char mark(bool key, AviFrame::Index index) {
    switch (index) {
        case AviFrame::Index::kKey:
            return key ? 'K' : '-';
        case AviFrame::Index::kOther:
            return key ? '+' : '.';
        default:
            return key ? 'k' : 'o';
    }
}

void print_frame(const Options &options, size_t number, const AviFrame &frame, bool key) {
    if (options.list) {
        std::printf("%zu, %llu, %u, %c\n", number, static_cast<unsigned long long>(frame.offset), frame.size,
                    mark(key, frame.index));
        return;
    }
    constexpr size_t kMarksPerLine = 64;
    if (number % kMarksPerLine == 0) std::printf("%s%8zu  ", number != 0 ? "\n" : "", number);
    std::putchar(mark(key, frame.index));
}

void keyframes_command(const Options &options) {
    AviReader reader(options.in);
    for (size_t i = 0; i < reader.streams().size(); i++) print_stream(i, reader.streams()[i]);
    const size_t video = first_video(reader, options.in);
    const int32_t type = video_type(reader.streams()[video]);
    if (options.list) std::printf("# frame, offset, bytes, mark\n");
    Totals totals;
    std::vector<uint8_t> data;
    for (const AviFrame &frame : reader.frames(video)) {
        reader.read(frame, data);
        // A frame without data repeats the one before it.
        const bool key = frame.size != 0 && qorv_is_vkeyfrm(type, data.data(), static_cast<int32_t>(frame.size)) != 0;
        print_frame(options, totals.frames, frame, key);
        totals.add(key, frame.index);
    }
    if (!options.list && totals.frames != 0) std::putchar('\n');
    std::printf(
        "K key frame, . other, + key by its data alone, - by the index alone; not in the index: k key, o other\n");
    std::printf("%zu frames, key frames: %zu by data, %zu by index; %zu agree, %zu differ, %zu not in the index\n",
                totals.frames, totals.by_data, totals.by_index, totals.agree, totals.differ, totals.unindexed);
}

}  // namespace

void add_keyframes_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    CLI::App *command =
        app.add_subcommand("keyframes", "Find the key frames of an AVI file and compare with its index");
    command->add_option("IN", options->in, "AVI file")->required();
    command->add_flag("--list", options->list, "A line for every frame in place of the strip of marks");
    command->footer("The frames are those of the first video stream.");
    command->callback([options] { keyframes_command(*options); });
}

}  // namespace tool
