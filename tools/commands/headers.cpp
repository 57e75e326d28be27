// qorv headers: the NAL units of an H.264 or HEVC byte stream and the fields of its sequence parameter sets.
#include <cstdio>
#include <map>
#include <utility>

#include "tools/commands/command.h"
#include "tools/stream/nal.h"

namespace tool {

namespace {

struct Options : Verbosity {
    std::string in, codec;
};

struct UnitName {
    int type;
    const char *name;
};

constexpr UnitName kH264Names[] = {
    {1, "slice"},
    {2, "slice data partition A"},
    {3, "slice data partition B"},
    {4, "slice data partition C"},
    {5, "slice of an IDR picture"},
    {6, "supplemental enhancement information"},
    {7, "sequence parameter set"},
    {8, "picture parameter set"},
    {9, "access unit delimiter"},
    {10, "end of sequence"},
    {11, "end of stream"},
    {12, "filler data"},
    {13, "sequence parameter set extension"},
    {14, "prefix NAL unit"},
    {15, "subset sequence parameter set"},
    {19, "slice of an auxiliary picture"},
    {20, "slice extension"},
};

constexpr UnitName kHevcNames[] = {
    {0, "slice of a trailing picture, not for reference"},
    {1, "slice of a trailing picture"},
    {2, "slice of a temporal sub-layer access picture, not for reference"},
    {3, "slice of a temporal sub-layer access picture"},
    {4, "slice of a stepwise sub-layer access picture, not for reference"},
    {5, "slice of a stepwise sub-layer access picture"},
    {6, "slice of a decodable leading picture, not for reference"},
    {7, "slice of a decodable leading picture"},
    {8, "slice of a skipped leading picture, not for reference"},
    {9, "slice of a skipped leading picture"},
    {16, "slice of a broken-link picture, with leading pictures"},
    {17, "slice of a broken-link picture, with decodable leading pictures"},
    {18, "slice of a broken-link picture, without leading pictures"},
    {19, "slice of an IDR picture, with decodable leading pictures"},
    {20, "slice of an IDR picture, without leading pictures"},
    {21, "slice of a clean random access picture"},
    {32, "video parameter set"},
    {33, "sequence parameter set"},
    {34, "picture parameter set"},
    {35, "access unit delimiter"},
    {36, "end of sequence"},
    {37, "end of bitstream"},
    {38, "filler data"},
    {39, "supplemental enhancement information, prefix"},
    {40, "supplemental enhancement information, suffix"},
};

template <size_t kCount>
const char *find_name(const UnitName (&names)[kCount], int type) {
    for (const UnitName &known : names) {
        if (known.type == type) return known.name;
    }
    return "reserved or unspecified";
}

// What differs between the two codecs.
struct Codec {
    int sequence_type;
    size_t header_bytes;
    int (*type_of)(const Nal &);
    bool (*is_base_layer)(const Nal &);  // sequence parameter sets of other layers have another syntax
    const char *(*name_of)(int);
    SequenceHeader (*parse)(const std::string &, const Nal &);
    uint32_t level_unit;  // of the coded level, in a whole level
};

const Codec kH264 = {7,
                     1,
                     [](const Nal &nal) { return nal.head[0] & 0x1F; },
                     [](const Nal &) { return true; },
                     [](int type) { return find_name(kH264Names, type); },
                     parse_h264_sequence,
                     10};
const Codec kHevc = {33,
                     2,
                     [](const Nal &nal) { return nal.head[0] >> 1 & 0x3F; },
                     [](const Nal &nal) { return (nal.head[0] & 1) == 0 && nal.head[1] >> 3 == 0; },
                     [](int type) { return find_name(kHevcNames, type); },
                     parse_hevc_sequence,
                     30};

const Codec &choose_codec(const Options &options, Input &input) {
    if (options.codec == "h264") return kH264;
    if (options.codec == "hevc") return kHevc;
    switch (guess_codec(input.peek())) {
        case NalCodec::kHevc:
            return kHevc;
        case NalCodec::kH264:
            return kH264;
        default:
            break;
    }
    // Nothing to go by: the name, and if that says nothing the reader will find what is wrong.
    for (const char *const hevc : {".hevc", ".h265", ".265"}) {
        if (options.in.ends_with(hevc)) return kHevc;
    }
    return kH264;
}

constexpr const char *kChromaNames[] = {"4:0:0", "4:2:0", "4:2:2", "4:4:4"};

// A level in tenths.
uint32_t level_of(const SequenceHeader &header, const Codec &codec) {
    return header.level * 10 / codec.level_unit;
}

void print_sequence(const SequenceHeader &header, const Codec &codec) {
    const uint32_t level = level_of(header, codec);
    std::printf("    id %u, profile %u, level %u.%u, %s, %u and %u bits, %ux%u coded, %ux%u shown", header.id,
                header.profile, level / 10, level % 10, kChromaNames[header.chroma_format], header.luma_bits,
                header.chroma_bits, header.coded_width, header.coded_height, header.width, header.height);
    if (&codec == &kH264) {
        std::printf(", %u reference frames, %s\n", header.reference_frames,
                    header.frames_only ? "frames only" : "frames and fields");
    } else {
        std::printf(", %s tier, %u sub-layers\n", header.tier != 0 ? "high" : "main", header.sub_layers);
    }
}

void print_json_sequence(const SequenceHeader &header, const Codec &codec) {
    const uint32_t level = level_of(header, codec);
    std::printf(
        ", \"sequence\": {\"id\": %u, \"profile\": %u, \"level\": \"%u.%u\", \"chroma\": \"%s\", \"luma_bits\": %u, "
        "\"chroma_bits\": %u, \"coded_width\": %u, \"coded_height\": %u, \"width\": %u, \"height\": %u",
        header.id, header.profile, level / 10, level % 10, kChromaNames[header.chroma_format], header.luma_bits,
        header.chroma_bits, header.coded_width, header.coded_height, header.width, header.height);
    if (&codec == &kH264) {
        std::printf(", \"reference_frames\": %u, \"frames_only\": %s}", header.reference_frames,
                    header.frames_only ? "true" : "false");
    } else {
        std::printf(", \"tier\": \"%s\", \"sub_layers\": %u}", header.tier != 0 ? "high" : "main", header.sub_layers);
    }
}

// One unit, with its parameters where it is a sequence parameter set.
void print_unit(const Options &options, const Codec &codec, const Nal &nal, bool first) {
    const int type = codec.type_of(nal);
    const auto offset = static_cast<unsigned long long>(nal.offset), size = static_cast<unsigned long long>(nal.size);
    const bool sequence = type == codec.sequence_type && codec.is_base_layer(nal);
    if (!options.json) {
        std::printf("%llu, %llu, %d (%s)\n", offset, size, type, codec.name_of(type));
        if (sequence) print_sequence(codec.parse(options.in, nal), codec);
        return;
    }
    std::printf("%s    {\"offset\": %llu, \"bytes\": %llu, \"type\": %d, \"name\": \"%s\"", first ? "\n" : ",\n",
                offset, size, type, codec.name_of(type));
    if (sequence) print_json_sequence(codec.parse(options.in, nal), codec);
    std::printf("}");
}

void headers_command(const Options &options) {
    need(options.in, "IN");
    NalReader reader(options.in);
    const Codec &codec = choose_codec(options, reader.input());
    std::map<int, uint64_t> counts;
    uint64_t units = 0;
    Progress progress(options, "units");
    Nal nal;
    std::printf(options.json ? "{\n  \"codec\": \"%s\",\n  \"units\": [" : "# %s: offset, bytes, type\n",
                &codec == &kHevc ? "hevc" : "h264");
    while (reader.next(nal)) {
        if ((nal.head[0] & 0x80) != 0) throw error_at(options.in, nal.offset, "a NAL unit with the forbidden bit set");
        if (nal.size < codec.header_bytes) throw error_at(options.in, nal.offset, "the NAL unit is cut off");
        print_unit(options, codec, nal, units == 0);
        counts[codec.type_of(nal)]++;
        progress.update(++units, reader.input().offset(), reader.input().size());
    }
    if (options.json) std::printf("\n  ],\n  \"counts\": {");
    const char *separator = "";
    for (const auto &[type, count] : counts) {
        const auto n = static_cast<unsigned long long>(count);
        if (options.json) {
            std::printf("%s\"%d\": %llu", std::exchange(separator, ", "), type, n);
        } else {
            std::printf("%llu of type %d (%s)\n", n, type, codec.name_of(type));
        }
    }
    if (options.json) std::printf("}\n}\n");
}

}  // namespace

void add_headers_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    Command command(app, "headers", "List the NAL units of an H.264 or HEVC byte stream", *options);
    command.add_argument("IN", options->in, "Byte stream with start codes ('-': standard input)");
    command.add_choice("--codec", "h264|hevc", options->codec, {"h264", "hevc"},
                       "What the stream is. Default: what its first NAL units look like");
    command.set_footer(
        "Sequence parameter sets are parsed down to the picture's size and depth. Example:\n"
        "  ffmpeg -i clip.mp4 -c copy -bsf:v h264_mp4toannexb clip.h264 && qorv headers clip.h264");
    command.set_action([options] { headers_command(*options); });
}

}  // namespace tool
