// Aligned memory, fills and copies of pictures and blocks: the C functions, with a handle for the memory.
#include <cstdio>
#include <memory>
#include <qorv_skia.hpp>

namespace {
constexpr int kWidth = 40, kHeight = 6, kStride = 64;

struct Free {
    void operator()(void *block) const { qorv_mfree_align32(block); }
};
using Memory = std::unique_ptr<void, Free>;
}  // namespace

int main() {
    const Memory memory(qorv_malloc_align32(kStride * kHeight)), copy_memory(qorv_malloc_align32(kStride * kHeight));
    if (!memory || !copy_memory) return 1;
    qorv_mset_x64a(memory.get(), 16, kStride * kHeight);  // black
    const qorv::Plane<std::uint8_t> picture(static_cast<std::uint8_t *>(memory.get()), kWidth, kHeight, kStride);
    qorv_mset_x64a(&picture(8, 2), 235, 12);  // a white run in row 2

    const qorv::Plane<std::uint8_t> copy(static_cast<std::uint8_t *>(copy_memory.get()), kWidth, kHeight, kStride);
    qorv_mclr_x64(copy.data(), kStride * kHeight);
    qorv_mcpy_pic(copy.data(), picture.data(), copy.stride(), picture.stride(), kWidth, kHeight);
    std::printf("row 2: %d %d ... %d\n", copy(7, 2), copy(8, 2), copy(19, 2));
    if (copy(19, 2) != 235 || copy.data()[2 * kStride + kWidth] != 0) return 1;  // the margin stays zero

    // A block of 12x4 into a buffer of its own. The widths are those of qorv_mcpy_blk(): others copy 64 bytes a row.
    std::uint8_t block[4 * 12];
    qorv_mcpy_blk(block, &picture(8, 1), 12, picture.stride(), 12, 4);
    return block[11] == 16 && block[12] == 235 ? 0 : 1;
}
