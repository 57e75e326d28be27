// Finds where a block of the current picture comes from: SAD over a window of the reference, then the residual and what
// it would cost by its Hadamard transform. The block metrics are called as they are: views give address and stride.
#include <cstdio>
#include <qorv_skia.hpp>

namespace {
constexpr int kSide = 64, kBlock = 16, kRange = 8;
std::uint8_t reference_samples[kSide * kSide], current_samples[kSide * kSide];
}  // namespace

int main() {
    const qorv::Plane<std::uint8_t> reference(reference_samples, kSide, kSide, kSide);
    const qorv::Plane<std::uint8_t> current(current_samples, kSide, kSide, kSide);
    for (int y = 0; y < kSide; y++) {
        for (int x = 0; x < kSide; x++) {
            reference(x, y) = static_cast<std::uint8_t>((x * x + 3 * y * y + x * y) >> 4 & 127);
        }
    }
    // The current picture is the reference moved by (5, -3), and one brighter.
    for (int y = 8; y < kSide - 8; y++) {
        for (int x = 8; x < kSide - 8; x++) current(x, y) = static_cast<std::uint8_t>(reference(x + 5, y - 3) + 1);
    }

    const int at_x = 24, at_y = 24;
    const qorv::Plane<std::uint8_t> block = current.part(at_x, at_y, kBlock, kBlock);
    qorv::Plane<std::uint8_t> match;
    std::uint32_t best = UINT32_MAX;
    int best_x = 0, best_y = 0;
    for (int y = -kRange; y <= kRange; y++) {
        for (int x = -kRange; x <= kRange; x++) {
            const qorv::Plane<std::uint8_t> candidate = reference.part(at_x + x, at_y + y, kBlock, kBlock);
            const std::uint32_t sad = qorv_sad16x16(block.data(), candidate.data(), block.stride(), candidate.stride());
            if (sad >= best) continue;
            best = sad;
            match = candidate;
            best_x = x;
            best_y = y;
        }
    }
    std::printf("motion (%d, %d), SAD %u\n", best_x, best_y, static_cast<unsigned>(best));

    std::int16_t residual[kBlock * kBlock];
    qorv_diff16x16(block.data(), match.data(), block.stride(), match.stride(), kBlock, residual);
    const std::uint32_t satd = qorv_satd(kBlock, kBlock, block.data(), match.data(), block.stride(), match.stride());
    std::printf("first residual %d, SATD of 4x4 tiles %u\n", residual[0], static_cast<unsigned>(satd));
    return best_x == 5 && best_y == -3 && best == 256 && residual[0] == 1 ? 0 : 1;
}
