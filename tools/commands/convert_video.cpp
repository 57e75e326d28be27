// Streams to pictures, and to streams of another size or format of file.
#include "tools/base/error.h"
#include "tools/base/output.h"
#include "tools/base/pipeline.h"
#include "tools/commands/convert.h"
#include "tools/commands/numbered.h"
#include "tools/video/converter.h"
#include "tools/video/scaler.h"

namespace tool {

namespace {

struct Item {
    std::vector<uint8_t> frame, result;
    uint64_t number = 0, bytes_read = 0;
};

// Reads the frames that are wanted into an item.
bool read_item(VideoReader &reader, bool all, uint64_t frame, Item &item) {
    if (!all && reader.frames_read() > frame) return false;
    while (reader.next(item.frame)) {
        item.number = reader.frames_read() - 1;
        item.bytes_read = reader.bytes_read();
        if (all || item.number == frame) return true;
    }
    return false;
}

void check_found(const VideoReader &reader, const ConvertOptions &options, bool all, uint64_t frames) {
    if (frames != 0) return;
    throw Error(reader.path() + (all ? ": there are no frames"
                                     : ": there is no frame " + std::to_string(options.frame) + ": the stream has " +
                                           std::to_string(reader.frames_read())));
}

}  // namespace

ConvertReport video_to_pictures(VideoReader &reader, const ConvertOptions &options) {
    const VideoFormat &format = reader.format();
    const bool scales = options.width != 0, all = options.every_frame;
    const FrameConversion conversion =
        choose_conversion(reader.path(), format, options.layout, scales ? options.width : format.width,
                          scales ? options.height : format.height);
    const int threads = all ? options.threads : 1;
    std::vector<Item> items(static_cast<size_t>(pipeline_items(threads)));
    std::vector<FrameConverter> converters;
    converters.reserve(items.size());
    for (size_t i = 0; i < items.size(); i++) converters.emplace_back(format, conversion);
    const NumberedName numbered(options.out);
    Progress progress(options, "frames");
    ConvertReport report = {0, conversion.width, conversion.height, conversion.pixels->name, 0};
    run_pipeline(threads, {[&](int i) { return read_item(reader, all, options.frame, items[static_cast<size_t>(i)]); },
                           [&](int i) {
                               Item &item = items[static_cast<size_t>(i)];
                               item.result = encode_picture(converters[static_cast<size_t>(i)].convert(item.frame),
                                                            options.kind, options.quality);
                           },
                           [&](int i) {
                               const Item &item = items[static_cast<size_t>(i)];
                               write_file(all ? numbered(item.number) : options.out, item.result);
                               progress.update(++report.frames, item.bytes_read, reader.all_bytes());
                           }});
    check_found(reader, options, all, report.frames);
    for (const FrameConverter &converter : converters) report.seconds += converter.seconds();
    return report;
}

ConvertReport video_to_video(VideoReader &reader, const ConvertOptions &options) {
    const bool scales = options.width != 0, all = options.every_frame;
    VideoFormat format = scales ? scaled_format(reader.format(), options.width, options.height) : reader.format();
    if (options.rate_num != 0) {
        set_header_word(format, "F", std::to_string(options.rate_num) + ":" + std::to_string(options.rate_den));
    }
    std::vector<Item> items(static_cast<size_t>(pipeline_items(options.threads)));
    std::vector<FrameScaler> scalers(scales ? items.size() : 0, FrameScaler(reader.format(), format));
    OutputFile file(options.out);
    file.write(y4m_header(format));
    Progress progress(options, "frames");
    ConvertReport report = {0, format.width, format.height, "", 0};
    run_pipeline(options.threads,
                 {[&](int i) { return read_item(reader, all, options.frame, items[static_cast<size_t>(i)]); },
                  [&](int i) {
                      Item &item = items[static_cast<size_t>(i)];
                      if (scales) scalers[static_cast<size_t>(i)].scale(item.frame, item.result);
                  },
                  [&](int i) {
                      const Item &item = items[static_cast<size_t>(i)];
                      file.write("FRAME\n");
                      file.write(scales ? item.result : item.frame);
                      progress.update(++report.frames, item.bytes_read, reader.all_bytes());
                  }});
    check_found(reader, options, all, report.frames);
    file.commit();
    return report;
}

}  // namespace tool
