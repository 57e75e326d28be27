// qorv keyframes: the key frames of an AVI file, by their data and by the container's index.
#include <algorithm>
#include <cstdio>

#include "qorv_skia.h"
#include "tools/commands/command.h"
#include "tools/stream/avi.h"

namespace tool {

namespace {

struct Options : Verbosity {
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

// Whether the library can tell a key frame of this type from its data.
bool has_test(int32_t id) {
    static constexpr int32_t known[] = {QORV_MT_VID_MPEG4, QORV_MT_VID_H263, QORV_MT_VID_H264, QORV_MT_VID_WMV1,
                                        QORV_MT_VID_WMV2,  QORV_MT_VID_DIV3, QORV_MT_VID_HEVC, QORV_MT_VID_HFYU};
    return std::find(std::begin(known), std::end(known), id) != std::end(known);
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

void print_json_stream(size_t number, const AviStream &stream) {
    std::printf("%s    {", number == 0 ? "\n" : ",\n");
    if (stream.is_video()) {
        const int32_t id = video_type(stream);
        std::printf(
            "\"type\": \"video\", \"fourcc\": %s, \"media_type\": %d, \"name\": \"%s\", \"width\": %d, "
            "\"height\": %d, \"rate\": %u, \"scale\": %u}",
            json_string(fourcc_text(stream.codec)).c_str(), id, type_name(id), stream.width, stream.height, stream.rate,
            stream.scale);
    } else if (stream.is_audio()) {
        const int32_t id = qorv_fcc2mt_aud(stream.codec);
        std::printf(
            "\"type\": \"audio\", \"tag\": %u, \"media_type\": %d, \"name\": \"%s\", \"sample_rate\": %u, "
            "\"channels\": %u}",
            stream.codec, id, type_name(id), stream.sample_rate, stream.channels);
    } else {
        std::printf("\"type\": %s}", json_string(fourcc_text(stream.type)).c_str());
    }
}

size_t first_video(const AviReader &reader, const std::string &path) {
    for (size_t i = 0; i < reader.streams().size(); i++) {
        if (reader.streams()[i].is_video()) return i;
    }
    throw Error(path + ": has no video stream");
}

// What a frame's data say of it; nothing where its codec has no test.
enum class Told : uint8_t { kNothing, kKey, kOther };

struct Totals {
    size_t frames = 0, by_data = 0, by_index = 0, agree = 0, differ = 0, unindexed = 0, untold = 0;

    void add(Told told, AviFrame::Index index) {
        const bool indexed_key = index == AviFrame::Index::kKey;
        frames++;
        by_data += told == Told::kKey;
        by_index += indexed_key;
        untold += told == Told::kNothing;
        unindexed += index == AviFrame::Index::kNone;
        if (told == Told::kNothing || index == AviFrame::Index::kNone) return;
        (told == Told::kKey) == indexed_key ? agree++ : differ++;
    }
};

char mark(Told told, AviFrame::Index index) {
    static constexpr char kMarks[3][3] = {{'?', 'I', '?'},   // nothing told: the index has none, a key frame, another
                                          {'k', 'K', '+'},   // a key frame
                                          {'o', '-', '.'}};  // another
    return kMarks[static_cast<size_t>(told)][static_cast<size_t>(index)];
}

void print_frame(const Options &options, size_t number, const AviFrame &frame, char mark) {
    const auto offset = static_cast<unsigned long long>(frame.offset);
    if (options.json) {
        std::printf("%s    {\"frame\": %zu, \"offset\": %llu, \"bytes\": %u, \"mark\": \"%c\"}",
                    number == 0 ? "\n" : ",\n", number, offset, frame.size, mark);
    } else if (options.list) {
        std::printf("%zu, %llu, %u, %c\n", number, offset, frame.size, mark);
    } else {
        constexpr size_t kMarksPerLine = 64;
        if (number % kMarksPerLine == 0) std::printf("%s%8zu  ", number != 0 ? "\n" : "", number);
        std::putchar(mark);
    }
}

Totals print_frames(AviReader &reader, size_t video, const Options &options) {
    const int32_t type = video_type(reader.streams()[video]);
    const std::vector<AviFrame> &frames = reader.frames(video);
    Progress progress(options, "frames");
    Totals totals;
    std::vector<uint8_t> data;
    for (const AviFrame &frame : frames) {
        reader.read(frame, data);
        // A frame without data repeats the one before it.
        const bool key = frame.size != 0 && qorv_is_vkeyfrm(type, data.data(), static_cast<int32_t>(frame.size)) != 0;
        const Told told = !has_test(type) ? Told::kNothing : key ? Told::kKey : Told::kOther;
        print_frame(options, totals.frames, frame, mark(told, frame.index));
        totals.add(told, frame.index);
        progress.update(totals.frames, totals.frames, frames.size());
    }
    return totals;
}

void print_text(AviReader &reader, size_t video, const Options &options) {
    if (options.list) std::printf("# frame, offset, bytes, mark\n");
    const Totals totals = print_frames(reader, video, options);
    if (!options.list && totals.frames != 0) std::putchar('\n');
    if (totals.untold != 0) {
        std::printf("I key frame by the index, ? other; the frames' data cannot tell, as this codec has no test\n");
        std::printf("%zu frames, key frames: cannot tell by data, %zu by index; %zu not in the index\n", totals.frames,
                    totals.by_index, totals.unindexed);
        return;
    }
    std::printf(
        "K key frame, . other, + key by its data alone, - by the index alone; not in the index: k key, o other\n");
    std::printf("%zu frames, key frames: %zu by data, %zu by index; %zu agree, %zu differ, %zu not in the index\n",
                totals.frames, totals.by_data, totals.by_index, totals.agree, totals.differ, totals.unindexed);
}

void print_json(AviReader &reader, size_t video, const Options &options) {
    std::printf("{\n  \"streams\": [");
    for (size_t i = 0; i < reader.streams().size(); i++) print_json_stream(i, reader.streams()[i]);
    std::printf("\n  ],\n  \"frames\": [");
    const Totals totals = print_frames(reader, video, options);
    const std::string by_data = totals.untold != 0 ? "null" : std::to_string(totals.by_data);
    std::printf(
        "\n  ],\n  \"keys_by_data\": %s, \"keys_by_index\": %zu, \"agree\": %zu, \"differ\": %zu, "
        "\"not_in_index\": %zu, \"cannot_tell\": %zu\n}\n",
        by_data.c_str(), totals.by_index, totals.agree, totals.differ, totals.unindexed, totals.untold);
}

void keyframes_command(const Options &options) {
    need(options.in, "IN");
    AviReader reader(options.in);
    for (const std::string &warning : reader.warnings()) warn(options, warning);
    const size_t video = first_video(reader, options.in);
    if (options.json) return print_json(reader, video, options);
    for (size_t i = 0; i < reader.streams().size(); i++) print_stream(i, reader.streams()[i]);
    print_text(reader, video, options);
}

}  // namespace

void add_keyframes_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    Command command(app, "keyframes", "Find the key frames of an AVI file and compare with its index", *options);
    command.add_argument("IN", options->in, "AVI file ('-': standard input)");
    command.add_flag("--list", options->list, "A line for every frame in place of the strip of marks");
    command.set_footer("The frames are those of the first video stream.");
    command.set_action([options] { keyframes_command(*options); });
}

}  // namespace tool
