// qorv md5: the digest of every frame of a Y4M stream and of all of them.
#include <cstdio>

#include "qorv_skia.h"
#include "tools/base/pipeline.h"
#include "tools/commands/command.h"

namespace tool {

namespace {

struct Options : Verbosity {
    std::string in;
    VideoOptions video;
    int threads = 1;
};

std::string to_hex(const uint8_t (&digest)[16]) {
    std::string text;
    for (const uint8_t byte : digest) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", byte);
        text += pair;
    }
    return text;
}

void hash_bytes(QORV_MD5 &md5, const uint8_t *data, size_t size) {
    constexpr size_t kPiece = 1u << 30;  // the length of an update is a 32-bit number
    for (size_t done = 0; done < size; done += kPiece) {
        qorv_md5_update(&md5, data + done, static_cast<uint32_t>(std::min(kPiece, size - done)));
    }
}

void hash_samples(QORV_MD5 &md5, const std::vector<uint8_t> &frame) {
    constexpr size_t kPiece = 256;  // samples of an update
    uint16_t samples[kPiece];
    for (size_t done = 0; done < frame.size(); done += 2 * kPiece) {
        const size_t n = std::min(kPiece, (frame.size() - done) / 2);
        // The stream's samples are little-endian.
        for (size_t i = 0; i < n; i++) {
            samples[i] = static_cast<uint16_t>(frame[done + 2 * i] | frame[done + 2 * i + 1] << 8);
        }
        qorv_md5_update_16(&md5, samples, static_cast<uint32_t>(n));
    }
}

// The picture's checksum walks 8-bit 4:2:0 and luma alone.
bool is_checksum_layout(const VideoFormat &format) {
    return format.bits == 8 && !format.alpha && (format.chroma == "420" || format.chroma == "mono");
}

// A picture record that only lends its planes: all that the checksum reads.
QORV_IMGB view_of(const VideoFormat &format, std::vector<uint8_t> &frame) {
    QORV_IMGB view = {};
    view.cs = format.chroma == "mono" ? QORV_CS_YUV400 : QORV_CS_YUV420;
    view.w = static_cast<int32_t>(format.width);
    view.h = static_cast<int32_t>(format.height);
    for (size_t i = 0; i < format.planes.size(); i++) {
        view.a[i] = frame.data() + format.planes[i].offset;
        view.s[i] = static_cast<int32_t>(format.planes[i].width);
    }
    return view;
}

std::string frame_digest(const VideoFormat &format, std::vector<uint8_t> &frame) {
    uint8_t digest[16];
    if (is_checksum_layout(format)) {
        const QORV_IMGB view = view_of(format, frame);
        qorv_md5_imgb(&view, digest);
        return to_hex(digest);
    }
    QORV_MD5 md5;
    qorv_md5_init(&md5);
    if (format.bits == 8) {
        hash_bytes(md5, frame.data(), frame.size());
    } else {
        hash_samples(md5, frame);
    }
    qorv_md5_finish(&md5, digest);
    return to_hex(digest);
}

struct Item {
    std::vector<uint8_t> frame;
    uint64_t bytes_read = 0;
    std::string digest;
};

void print_frame(const Options &options, uint64_t number, const Item &item) {
    const auto n = static_cast<unsigned long long>(number);
    if (options.json) {
        std::printf("%s\n    {\"frame\": %llu, \"bytes\": %zu, \"md5\": \"%s\"}", number == 0 ? "" : ",", n,
                    item.frame.size(), item.digest.c_str());
    } else {
        std::printf("%llu, %zu, %s\n", n, item.frame.size(), item.digest.c_str());
    }
}

// The digest of the whole is computed here, in order, while other threads compute those of the frames.
void md5_command(const Options &options) {
    need(options.in, "IN");
    check_video_options(options.video);
    VideoReader reader(options.in, options.video);
    std::vector<Item> items(static_cast<size_t>(pipeline_items(options.threads)));
    const auto item = [&](int i) -> Item & { return items[static_cast<size_t>(i)]; };
    QORV_MD5 all;
    qorv_md5_init(&all);
    uint64_t frames = 0;
    Progress progress(options, "frames");
    std::printf(options.json ? "{\n  \"frames\": [" : "# frame, bytes, md5\n");
    run_pipeline(options.threads, {[&](int i) {
                                       const bool more = reader.next(item(i).frame);
                                       item(i).bytes_read = reader.bytes_read();
                                       return more;
                                   },
                                   [&](int i) { item(i).digest = frame_digest(reader.format(), item(i).frame); },
                                   [&](int i) {
                                       hash_bytes(all, item(i).frame.data(), item(i).frame.size());
                                       print_frame(options, frames++, item(i));
                                       progress.update(frames, item(i).bytes_read, reader.all_bytes());
                                   }});
    uint8_t digest[16];
    qorv_md5_finish(&all, digest);
    std::printf(options.json ? "\n  ],\n  \"md5\": \"%s\"\n}\n" : "MD5=%s\n", to_hex(digest).c_str());
}

}  // namespace

void add_md5_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    Command command(app, "md5", "Print the MD5 of every frame of a stream and of all of them", *options);
    command.add_argument("IN", options->in, "Y4M stream or raw planes ('-': standard input)");
    command.add_video_options(options->video, false);
    command.add_threads(options->threads);
    command.set_footer(
        "The digests are those of the raw pictures, as FFmpeg computes them:\n"
        "  ffmpeg -i clip.y4m -f rawvideo clip.yuv && md5sum clip.yuv     the last line\n"
        "  ffmpeg -i clip.y4m -c:v rawvideo -f framemd5 -                 the lines of the frames");
    command.set_action([options] { md5_command(*options); });
}

}  // namespace tool
