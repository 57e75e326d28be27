// qorv compare: how far two Y4M streams lie apart, frame by frame and in total.
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "qorv_skia.h"
#include "tools/base/limits.h"
#include "tools/base/pipeline.h"
#include "tools/commands/command.h"

namespace tool {

namespace {

constexpr const char *kPlaneNames[] = {"y", "u", "v", "a"};

struct Options : Verbosity {
    std::string a, b;
    VideoOptions video;
    int threads = 1;
};

struct Cost {
    uint64_t sad = 0, ssd = 0, satd = 0, samples = 0;

    Cost &operator+=(const Cost &other) {
        sad += other.sad;
        ssd += other.ssd;
        satd += other.satd;
        samples += other.samples;
        return *this;
    }
};

// Of a frame, or of all frames.
struct Costs {
    explicit Costs(size_t planes) : plane(planes) {}
    Cost all() const {
        Cost sum;
        for (const Cost &cost : plane) sum += cost;
        return sum;
    }
    std::vector<Cost> plane;
};

// 10 log10(peak^2 / mean square error) dB, infinite for equal pictures.
double psnr(const Cost &cost, int bits) {
    const double peak = std::ldexp(1.0, bits) - 1;
    return 10 * std::log10(peak * peak * static_cast<double>(cost.samples) / static_cast<double>(cost.ssd));
}

// A plane with its last column and row repeated up to multiples of 4, which is what the SATD reads.
class PaddedPlane {
public:
    PaddedPlane(const VideoPlane &plane, size_t sample_bytes)
        : width_(plane.width), height_(plane.height), offset_(plane.offset), sample_bytes_(sample_bytes) {
        samples_.resize((height_ + 3) / 4 * 4 * stride() * sample_bytes);
    }

    void load(const std::vector<uint8_t> &frame) {
        const size_t bytes = width_ * sample_bytes_, row_bytes = stride() * sample_bytes_;
        for (size_t y = 0; y * row_bytes < samples_.size(); y++) {
            uint8_t *row = samples_.data() + y * row_bytes;
            std::memcpy(row, frame.data() + offset_ + std::min<size_t>(y, height_ - 1) * bytes, bytes);
            for (size_t x = bytes; x < row_bytes; x++) row[x] = row[x - sample_bytes_];
        }
    }

    template <class T>
    const T *at(size_t x, size_t y) const {
        return reinterpret_cast<const T *>(samples_.data()) + y * stride() + x;
    }
    size_t width() const { return width_; }
    size_t height() const { return height_; }
    size_t stride() const { return (width_ + 3) / 4 * 4; }

private:
    size_t width_, height_, offset_, sample_bytes_;
    std::vector<uint8_t> samples_;
};

// Adds up metric(w, h, a, b, stride, stride) over the blocks of a plane, `side` samples wide and high at the most.
template <class T, class Metric>
uint64_t sum_blocks(const PaddedPlane &a, const PaddedPlane &b, size_t side, Metric metric) {
    uint64_t sum = 0;
    for (size_t y = 0; y < a.height(); y += side) {
        for (size_t x = 0; x < a.width(); x += side) {
            sum += metric(static_cast<int32_t>(std::min(side, a.width() - x)),
                          static_cast<int32_t>(std::min(side, a.height() - y)), a.at<T>(x, y), b.at<T>(x, y),
                          static_cast<int32_t>(a.stride()), static_cast<int32_t>(b.stride()));
        }
    }
    return sum;
}

// The metrics return 32 bits, so they are given blocks whose sums fit: (side x (2^bits - 1))^2 < 2^32.
Cost plane_cost(const PaddedPlane &a, const PaddedPlane &b, int bits) {
    constexpr size_t kSide = 64;
    Cost cost;
    cost.samples = uint64_t{a.width()} * a.height();
    if (bits == 8) {
        cost.sad = sum_blocks<uint8_t>(a, b, kSide, qorv_sad);
        cost.ssd = sum_blocks<uint8_t>(a, b, kSide, qorv_ssd);
        cost.satd = sum_blocks<uint8_t>(a, b, kSide, qorv_satd);
    } else {
        cost.sad = sum_blocks<int16_t>(a, b, kSide, qorv_sad_16);
        cost.ssd = sum_blocks<int16_t>(a, b, std::min(kSide, size_t{1} << (16 - bits)), qorv_ssd_16);
        cost.satd = sum_blocks<int16_t>(a, b, kSide, qorv_satd_16);
    }
    return cost;
}

void check_formats(const VideoReader &a, const VideoReader &b) {
    const VideoFormat &fa = a.format(), &fb = b.format();
    const auto differ = [&](const std::string &of_a, const std::string &of_b) {
        throw Error(a.path() + " is " + of_a + ", " + b.path() + " is " + of_b + ": only equal formats are compared");
    };
    const auto size = [](const VideoFormat &f) { return size_text(f.width, f.height); };
    if (fa.width != fb.width || fa.height != fb.height) differ(size(fa), size(fb));
    if (fa.chroma != fb.chroma || fa.bits != fb.bits || fa.alpha != fb.alpha) differ("C" + fa.name, "C" + fb.name);
    if (fa.bits == 16) throw Error(a.path() + ": samples of 16 bits are not compared, at most 15");
}

// Two frames and what they cost, on their way through the pipeline.
struct Item {
    std::vector<uint8_t> frame_a, frame_b;
    std::vector<PaddedPlane> planes_a, planes_b;
    uint64_t bytes_read = 0;
    Costs costs{0};
};

bool read_frames(VideoReader &a, VideoReader &b, Item &item) {
    const bool more_a = a.next(item.frame_a), more_b = b.next(item.frame_b);
    item.bytes_read = a.bytes_read();
    if (more_a == more_b) return more_a;
    const VideoReader &shorter = more_a ? b : a, &longer = more_a ? a : b;
    throw Error(shorter.path() + " ends after " + std::to_string(shorter.frames_read()) + " frames, " + longer.path() +
                " goes on");
}

void compare_frames(const VideoFormat &format, Item &item) {
    if (item.planes_a.empty()) {
        for (const VideoPlane &plane : format.planes) {
            item.planes_a.emplace_back(plane, format.sample_bytes());
            item.planes_b.emplace_back(plane, format.sample_bytes());
        }
    }
    item.costs = Costs(format.planes.size());
    for (size_t i = 0; i < format.planes.size(); i++) {
        item.planes_a[i].load(item.frame_a);
        item.planes_b[i].load(item.frame_b);
        item.costs.plane[i] = plane_cost(item.planes_a[i], item.planes_b[i], format.bits);
    }
}

// Calls report(frame number, costs) for every frame and returns the sums.
template <class Report>
Costs compare_streams(VideoReader &a, VideoReader &b, const Options &options, Report report) {
    std::vector<Item> items(static_cast<size_t>(pipeline_items(options.threads)));
    const auto item = [&](int i) -> Item & { return items[static_cast<size_t>(i)]; };
    Costs total(a.format().planes.size());
    uint64_t frames = 0;
    Progress progress(options, "frames");
    run_pipeline(options.threads, {[&](int i) { return read_frames(a, b, item(i)); },
                                   [&](int i) { compare_frames(a.format(), item(i)); },
                                   [&](int i) {
                                       const Costs &costs = item(i).costs;
                                       for (size_t k = 0; k < total.plane.size(); k++) total.plane[k] += costs.plane[k];
                                       report(frames++, costs);
                                       progress.update(frames, item(i).bytes_read, a.all_bytes());
                                   }});
    if (frames == 0) throw Error(a.path() + ": there are no frames");
    return total;
}

void print_row(const std::string &label, const Costs &costs, int bits) {
    const Cost all = costs.all();
    std::printf("%-6s %14" PRIu64 " %16" PRIu64 " %14" PRIu64 " %9.3f", label.c_str(), all.sad, all.ssd, all.satd,
                psnr(all, bits));
    for (const Cost &cost : costs.plane) std::printf(" %9.3f", psnr(cost, bits));
    std::printf("\n");
}

void print_table(VideoReader &a, VideoReader &b, const Options &options) {
    const int bits = a.format().bits;
    std::printf("%-6s %14s %16s %14s %9s", "frame", "SAD", "SSD", "SATD", "PSNR dB");
    for (size_t i = 0; i < a.format().planes.size(); i++) std::printf(" %9s", kPlaneNames[i]);
    std::printf("\n");
    const Costs total = compare_streams(
        a, b, options, [&](uint64_t frame, const Costs &costs) { print_row(std::to_string(frame), costs, bits); });
    print_row("total", total, bits);
}

std::string json_cost(const Cost &cost, int bits) {
    char psnr_text[32] = "null";
    if (cost.ssd != 0) std::snprintf(psnr_text, sizeof psnr_text, "%.6f", psnr(cost, bits));
    return "\"sad\": " + std::to_string(cost.sad) + ", \"ssd\": " + std::to_string(cost.ssd) +
           ", \"satd\": " + std::to_string(cost.satd) + ", \"psnr\": " + psnr_text;
}

std::string json_costs(const Costs &costs, int bits) {
    std::string text = json_cost(costs.all(), bits) + ", \"planes\": {";
    for (size_t i = 0; i < costs.plane.size(); i++) {
        text +=
            std::string(i == 0 ? "" : ", ") + "\"" + kPlaneNames[i] + "\": {" + json_cost(costs.plane[i], bits) + "}";
    }
    return text + "}";
}

// Frames are printed as they come; the text is complete, and the exit code 0, only when all are equal in number.
void print_json(VideoReader &a, VideoReader &b, const Options &options) {
    const int bits = a.format().bits;
    std::printf("{\n  \"frames\": [");
    const Costs total = compare_streams(a, b, options, [&](uint64_t frame, const Costs &costs) {
        std::printf("%s    {\"frame\": %" PRIu64 ", %s}", frame == 0 ? "\n" : ",\n", frame,
                    json_costs(costs, bits).c_str());
    });
    std::printf("\n  ],\n  \"total\": {%s}\n}\n", json_costs(total, bits).c_str());
}

void compare_command(const Options &options) {
    need(options.a, "A");
    need(options.b, "B");
    check_video_options(options.video);
    if (options.a == "-" && options.b == "-") throw UsageError("only one of the streams can be standard input");
    VideoReader a(options.a, options.video), b(options.b, options.video);
    check_formats(a, b);
    options.json ? print_json(a, b, options) : print_table(a, b, options);
}

}  // namespace

void add_compare_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    Command command(app, "compare", "Measure how far two streams lie apart", *options);
    command.add_argument("A", options->a, "Y4M stream or raw planes ('-': standard input)");
    command.add_argument("B", options->b, "The other one, of the same size and format");
    command.add_video_options(options->video, false);
    command.add_threads(options->threads);
    command.set_footer(
        "For every frame and in total: sum of absolute differences (SAD), of squared differences (SSD) and of the\n"
        "magnitudes of the 4x4 Hadamard transforms (SATD) over all planes, PSNR of all planes and of each one.\n"
        "PSNR is that of FFmpeg's psnr filter; equal pictures have inf, in JSON null. For the SATD the last column\n"
        "and row are repeated up to multiples of 4. JSON has every number for every plane.");
    command.set_action([options] { compare_command(*options); });
}

}  // namespace tool
