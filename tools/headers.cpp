// qorv headers: the NAL units of an H.264 or HEVC byte stream and the fields of its sequence parameter sets.
#include <cstdio>
#include <map>

#include "tools/command.h"
#include "tools/nal.h"

namespace tool {

namespace {

struct Options {
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

const Codec &choose_codec(const Options &options) {
    const std::string name =
        !options.codec.empty() ? options.codec : options.in.substr(options.in.find_last_of('.') + 1);
    for (const char *h264 : {"h264", "264", "avc"}) {
        if (name == h264) return kH264;
    }
    for (const char *hevc : {"hevc", "h265", "265"}) {
        if (name == hevc) return kHevc;
    }
    throw usage_error(options.in + ": the name tells no codec; give --codec h264 or --codec hevc");
}

void print_sequence(const SequenceHeader &header, const Codec &codec) {
    static const char *const chroma[] = {"4:0:0", "4:2:0", "4:2:2", "4:4:4"};
    std::printf("    id %u, profile %u, level %u.%u, %s, %u and %u bits, %ux%u coded, %ux%u shown", header.id,
                header.profile, header.level / codec.level_unit,
                header.level % codec.level_unit * 10 / codec.level_unit, chroma[header.chroma_format], header.luma_bits,
                header.chroma_bits, header.coded_width, header.coded_height, header.width, header.height);
    if (&codec == &kH264) {
        std::printf(", %u reference frames, %s\n", header.reference_frames,
                    header.frames_only ? "frames only" : "frames and fields");
    } else {
        std::printf(", %s tier, %u sub-layers\n", header.tier != 0 ? "high" : "main", header.sub_layers);
    }
}

void headers_command(const Options &options) {
    const Codec &codec = choose_codec(options);
    NalReader reader(options.in);
    std::map<int, uint64_t> counts;
    Nal nal;
    std::printf("# offset, bytes, type\n");
    while (reader.next(nal)) {
        if ((nal.head[0] & 0x80) != 0) {
            throw error_at(reader.path(), nal.offset, "a NAL unit with the forbidden bit set");
        }
        if (nal.size < codec.header_bytes) throw error_at(reader.path(), nal.offset, "the NAL unit is cut off");
        const int type = codec.type_of(nal);
        counts[type]++;
        std::printf("%llu, %llu, %d (%s)\n", static_cast<unsigned long long>(nal.offset),
                    static_cast<unsigned long long>(nal.size), type, codec.name_of(type));
        if (type == codec.sequence_type && codec.is_base_layer(nal))
            print_sequence(codec.parse(reader.path(), nal), codec);
    }
    for (const auto &[type, count] : counts) {
        std::printf("%llu of type %d (%s)\n", static_cast<unsigned long long>(count), type, codec.name_of(type));
    }
}

}  // namespace

void add_headers_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("headers", "List the NAL units of an H.264 or HEVC byte stream");
    command->add_option("IN", options->in, "Byte stream with start codes, *.h264 or *.hevc ('-' is standard input)")
        ->required();
    command->add_option("--codec", options->codec, "h264 or hevc, where the name does not tell")
        ->check(CLI::IsMember({"h264", "hevc"}));
    command->footer(
        "Sequence parameter sets are parsed down to the picture's size and depth. Example:\n"
        "  ffmpeg -i clip.mp4 -c copy -bsf:v h264_mp4toannexb clip.h264 && qorv headers clip.h264");
    command->callback([options] { headers_command(*options); });
}

}  // namespace tool
