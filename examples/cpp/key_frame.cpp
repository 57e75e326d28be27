// From a container's four-character code to the codec, and whether a packet can be the first to be decoded.
#include <cstdio>
#include <qorv_skia.hpp>

int main() {
    const std::int32_t id = qorv_fcc2mt_vid(QORV_FCC('a', 'v', 'c', '1'));
    if (id != QORV_MT_VID_H264) return 1;
    // Annex B: parameter sets, then a slice of an IDR picture (NAL type 5) or of another one (type 1).
    const std::uint8_t idr[] = {0, 0, 0, 1, 0x67, 0x42, 0, 0, 1, 0x68, 0xCE, 0, 0, 1, 0x65, 0x88, 0x84};
    const std::uint8_t other[] = {0, 0, 0, 1, 0x41, 0x9A, 0x24, 0x6C, 0x41, 0x4F};
    const auto is_key = [id](qorv::Span<const std::uint8_t> packet) {
        return qorv_is_vkeyfrm(id, packet.data(), static_cast<std::int32_t>(packet.size())) == 1;
    };
    std::printf("IDR slice: %d, other slice: %d\n", is_key(idr), is_key(other));
    return is_key(idr) && !is_key(other) ? 0 : 1;
}
