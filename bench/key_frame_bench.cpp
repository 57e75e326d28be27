#include <cstring>
#include <memory>

#include "bench/compare.h"
#include "qorv_skia.h"

namespace {

// Data without start codes; the peer is one pass of the C library over the same bytes.
void add_scan(const std::string &name, int32_t id, const std::shared_ptr<std::vector<uint8_t>> &data) {
    bench::add(name, "ours", [data, id] {
        int32_t key = qorv_is_vkeyfrm(id, data->data(), static_cast<int32_t>(data->size()));
        benchmark::DoNotOptimize(key);
    });
    bench::add(name, "memcpy", [data, copy = std::vector<uint8_t>(data->size())]() mutable {
        std::memcpy(copy.data(), data->data(), data->size());
        benchmark::DoNotOptimize(copy.data());
    });
}

void add_cases() {
    constexpr size_t kBytes = 1 << 20;
    struct Codec {
        const char *name;
        int32_t id;
    };
    const Codec codecs[] = {{"mpeg4", QORV_MT_VID_MPEG4},
                            {"h263", QORV_MT_VID_H263},
                            {"h264", QORV_MT_VID_H264},
                            {"hevc", QORV_MT_VID_HEVC}};
    const auto noise = std::make_shared<std::vector<uint8_t>>(bench::noise(kBytes));
    for (size_t i = 2; i < kBytes; i++) {
        if ((*noise)[i - 2] == 0 && (*noise)[i - 1] == 0) (*noise)[i] = 0xFF;
    }
    const auto zeros = std::make_shared<std::vector<uint8_t>>(kBytes);
    for (const Codec &codec : codecs) {
        add_scan(std::string("key_frame/1MiB_noise/") + codec.name, codec.id, noise);
        add_scan(std::string("key_frame/1MiB_zeros/") + codec.name, codec.id, zeros);
    }
}

const bench::Registration registration{add_cases};

}  // namespace
