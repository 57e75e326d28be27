// The key-frame test reads no byte that it must not. For H.263 its last position may look at data[size].
#include "input.h"
#include "qorv_skia.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const int32_t id = input.between(100, 123);
    std::vector<uint8_t> frame = input.rest();
    const auto frame_size = static_cast<int32_t>(frame.size());
    const bool unsized = id == QORV_MT_VID_WMV1 || id == QORV_MT_VID_WMV2 || id == QORV_MT_VID_DIV3;
    if (id == QORV_MT_VID_H263 || id == QORV_MT_VID_H263_OTHER || (unsized && frame.empty())) frame.push_back(0);
    frame.shrink_to_fit();
    const int32_t key = qorv_is_vkeyfrm(id, frame.data(), frame_size);
    fuzz::require(key == 0 || key == 1, "a key-frame test answers yes or no");
    return 0;
}
