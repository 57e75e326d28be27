// Borders of 64 samples round a 1080p picture: in place, against a library that copies the picture into a larger one
// and against a copy of as many bytes as a border takes.
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

const bench::Registration registration{[] {
    add_picture("yuv400/1920x1080", QORV_CS_YUV400, {{1920, 1080, 1}});
    add_picture("yuv420/1920x1080", QORV_CS_YUV420, {{1920, 1080, 1}, {960, 540, 1}, {960, 540, 1}});
    add_picture("p010/1920x1080", QORV_CS_P010, {{1920, 1080, 2}, {960, 540, 2}, {960, 540, 2}});
}};

}  // namespace
