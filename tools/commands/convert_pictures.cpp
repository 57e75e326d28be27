// Pictures, one or many with numbers, to a stream or to other pictures.
#include <unistd.h>

#include <utility>

#include "tools/base/error.h"
#include "tools/base/limits.h"
#include "tools/base/output.h"
#include "tools/base/pipeline.h"
#include "tools/commands/convert.h"
#include "tools/commands/numbered.h"
#include "tools/video/converter.h"

namespace tool {

namespace {

// The pictures to read, in turn: the one, or those with numbers until one is missing.
class PictureSource {
public:
    PictureSource(Input *input, const ConvertOptions &options) : input_(input), names_(options.in) {
        if (input_ != nullptr) return;
        const std::optional<uint64_t> first = names_.first();
        if (!first) throw Error(options.in + ": there is no picture " + names_(0));
        number_ = first_ = *first;
    }

    // What the next picture is read from; null when there are no more.
    std::unique_ptr<Input> next() {
        if (input_ != nullptr) return number_++ == 0 ? std::make_unique<Input>(std::move(*input_)) : nullptr;
        const std::string name = names_(number_);
        if (number_ != first_ && access(name.c_str(), F_OK) != 0) return nullptr;
        number_++;
        return std::make_unique<Input>(name);
    }

private:
    Input *input_;
    NumberedName names_;
    uint64_t number_ = 0, first_ = 0;
};

struct Item {
    std::unique_ptr<Input> input;
    Picture picture;
    std::vector<uint8_t> result;
};

// A single picture has its own progress, that of reading it.
RowReport row_report(Progress &progress, bool single) {
    if (!single) return {};
    return [&progress](uint32_t rows, uint32_t all) { progress.update(rows, rows, all); };
}

// Shows what a layout makes of a picture.
Picture through_layout(Picture picture, const std::string &layout) {
    if (layout.empty()) return picture;
    RgbPicture rgb(find_pixel_format(layout), picture.width, picture.height);
    rgb.load(picture);
    return rgb.show();
}

}  // namespace

ConvertReport pictures_to_video(Input *input, const ConvertOptions &options) {
    PictureSource source(input, options);
    Progress progress(options, input != nullptr ? "rows" : "frames");
    Picture first = read_picture(*source.next(), row_report(progress, input != nullptr));
    const uint32_t width = first.width, height = first.height;
    const PictureConversion conversion = choose_picture_conversion(first, options.layout);
    const VideoFormat format =
        format_of_frames(conversion, width, height, options.rate_num != 0 ? options.rate_num : 25, options.rate_den);
    const int threads = input != nullptr ? 1 : options.threads;
    std::vector<Item> items(static_cast<size_t>(pipeline_items(threads)));
    std::vector<PictureConverter> converters(items.size(), PictureConverter(conversion));
    OutputFile file(options.out);
    file.write(y4m_header(format));
    bool at_first = true;
    ConvertReport report = {0, width, height, conversion.pixels->name, 0};
    run_pipeline(threads, {[&](int i) {
                               Item &item = items[static_cast<size_t>(i)];
                               if (std::exchange(at_first, false)) {
                                   item.picture = std::move(first);
                                   return true;
                               }
                               item.input = source.next();
                               return item.input != nullptr;
                           },
                           [&](int i) {
                               Item &item = items[static_cast<size_t>(i)];
                               if (item.input) item.picture = read_picture(*item.input);
                               if (item.picture.width != width || item.picture.height != height) {
                                   throw Error(item.input->path() + ": " +
                                               size_text(item.picture.width, item.picture.height) +
                                               ", where the first picture has " + size_text(width, height));
                               }
                               item.result = converters[static_cast<size_t>(i)].convert(item.picture);
                           },
                           [&](int i) {
                               file.write("FRAME\n");
                               file.write(items[static_cast<size_t>(i)].result);
                               report.frames++;
                               if (input == nullptr) progress.update(report.frames, std::nullopt);
                           }});
    file.commit();
    for (const PictureConverter &converter : converters) report.seconds += converter.seconds();
    return report;
}

ConvertReport pictures_to_pictures(Input *input, const ConvertOptions &options) {
    PictureSource source(input, options);
    const bool single = input != nullptr;
    const int threads = single ? 1 : options.threads;
    std::vector<Item> items(static_cast<size_t>(pipeline_items(threads)));
    const NumberedName numbered(options.out);
    Progress progress(options, single ? "rows" : "pictures");
    ConvertReport report;
    run_pipeline(threads, {[&](int i) { return (items[static_cast<size_t>(i)].input = source.next()) != nullptr; },
                           [&](int i) {
                               Item &item = items[static_cast<size_t>(i)];
                               const RowReport rows = row_report(progress, single);
                               item.picture = through_layout(read_picture(*item.input, rows), options.layout);
                               item.result = encode_picture(item.picture, options.kind, options.quality, rows);
                           },
                           [&](int i) {
                               const Item &item = items[static_cast<size_t>(i)];
                               write_file(single ? options.out : numbered(report.frames), item.result);
                               report.frames++;
                               report.width = item.picture.width;
                               report.height = item.picture.height;
                               if (!single) progress.update(report.frames, std::nullopt);
                           }});
    return report;
}

}  // namespace tool
