// Borders of 64 samples round a 1080p picture: in place, against a library that copies the picture into a larger one
// and against a copy of as many bytes as a border takes. And borders of 16 samples round a small one, which stays in
// the cache, against a fill of each row's ends and copies of the outermost rows.
#include <cstring>
#include <memory>

#include "bench/compare.h"
#include "qorv_skia.h"

#ifdef QORV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int kPad = 64;
constexpr uint32_t kPadWords[4] = {QORV_IMGB_WORD(kPad, kPad), QORV_IMGB_WORD(kPad, kPad), QORV_IMGB_WORD(kPad, kPad)};

struct Plane {
    int w, h, bytes;
    size_t border_bytes() const { return static_cast<size_t>(((w + 2 * kPad) * (h + 2 * kPad) - w * h) * bytes); }
};

void add_picture(const std::string &name, uint32_t cs, const std::vector<Plane> &planes) {
    const std::shared_ptr<QORV_IMGB> imgb(
        qorv_imgb_create(1920, 1080, cs, 0, nullptr, kPadWords, nullptr, nullptr, nullptr),
        [](QORV_IMGB *record) { record->release(record); });
    memset(imgb->baddr[0], 1, imgb->bsize);
    const auto ours = [imgb] { qorv_imgb_expand(imgb.get(), kPadWords); };
    size_t border = 0;
    for (const Plane &plane : planes) border += plane.border_bytes();

    bench::add("border/" + name + "_bytes", "ours", ours);
    const auto from = std::make_shared<std::vector<uint8_t>>(bench::noise(border));
    const auto to = std::make_shared<std::vector<uint8_t>>(border);
    bench::add("border/" + name + "_bytes", "memcpy", [from, to] { memcpy(to->data(), from->data(), to->size()); });

    bench::add("border/" + name, "ours", ours);
#ifdef QORV_BENCH_OPENCV
    std::vector<cv::Mat> sources, results;
    for (const Plane &plane : planes) {
        const int type = plane.bytes == 1 ? CV_8UC1 : CV_16UC1;
        sources.emplace_back(plane.h, plane.w, type, cv::Scalar(1));
        results.emplace_back(plane.h + 2 * kPad, plane.w + 2 * kPad, type, cv::Scalar(0));
    }
    bench::add("border/" + name, "OpenCV", [sources, results] {
        for (size_t i = 0; i < sources.size(); i++) {
            cv::copyMakeBorder(sources[i], results[i], kPad, kPad, kPad, kPad, cv::BORDER_REPLICATE);
        }
    });
#endif
}

void add_small() {
    constexpr int kSide = 256, kEnd = 16, kStride = kSide + 2 * kEnd;
    static constexpr uint32_t kEnds[4] = {QORV_IMGB_WORD(kEnd, kEnd)};
    const std::shared_ptr<QORV_IMGB> imgb(
        qorv_imgb_create(kSide, kSide, QORV_CS_YUV400, 0, nullptr, kEnds, nullptr, nullptr, nullptr),
        [](QORV_IMGB *record) { record->release(record); });
    memset(imgb->baddr[0], 1, imgb->bsize);
    bench::add("border/yuv400/256x256_fills", "ours", [imgb] { qorv_imgb_expand(imgb.get(), kEnds); });
    const auto memory = std::make_shared<std::vector<uint8_t>>(kStride * kStride);
    bench::add("border/yuv400/256x256_fills", "two_passes", [memory] {
        uint8_t *const first = memory->data() + kEnd * kStride;
        size_t end = kEnd;
        benchmark::DoNotOptimize(end);  // not known to the compiler, as it is not to ours
        for (uint8_t *row = first; row < first + kSide * kStride; row += kStride) memset(row, row[kEnd], end);
        for (uint8_t *row = first; row < first + kSide * kStride; row += kStride) {
            memset(row + kEnd + kSide, row[kEnd + kSide - 1], end);
        }
        for (int y = 0; y < kEnd; y++) {
            memcpy(memory->data() + y * kStride, first, kStride);
            memcpy(first + (kSide + y) * kStride, first + (kSide - 1) * kStride, kStride);
        }
    });
}

const bench::Registration registration{[] {
    add_small();
    add_picture("yuv400/1920x1080", QORV_CS_YUV400, {{1920, 1080, 1}});
    add_picture("yuv420/1920x1080", QORV_CS_YUV420, {{1920, 1080, 1}, {960, 540, 1}, {960, 540, 1}});
    add_picture("p010/1920x1080", QORV_CS_P010, {{1920, 1080, 2}, {960, 540, 2}, {960, 540, 2}});
}};

}  // namespace
