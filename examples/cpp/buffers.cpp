// Buffers whose references handles count, memory from an allocator of the caller's, and owned bytes.
#include <cstdio>
#include <cstdlib>
#include <qorv_skia.hpp>

namespace {
int blocks = 0;

void *pool_alloc(std::uint32_t size, std::uint64_t *aux) {
    blocks++;
    *aux = 0x80000000u;  // for instance the address that a device knows the block by
    return std::malloc(size);
}

void pool_free(void *block, std::uint64_t) {
    blocks--;
    std::free(block);
}
}  // namespace

int main() {
    auto [packet, status] = qorv::BitstreamBuffer::create(1500, 1, pool_alloc, pool_free);
    if (!packet) return std::printf("no buffer: %s\n", to_text(status));
    std::printf("%d block, device address %#llx\n", blocks, static_cast<unsigned long long>(packet->aux));
    {
        const qorv::BitstreamBuffer second_holder = packet;
        if (packet.count() != 2) return 1;
    }
    packet.reset();  // the last one frees block and record
    if (blocks != 0) return 1;

    // 20 ms of stereo in 16 bits at 48 kHz, both channels in one buffer.
    auto [audio, audio_status] = qorv::AudioBuffer::create(960, 2, 16, 1);
    if (!audio) return std::printf("no buffer: %s\n", to_text(audio_status));
    std::printf("%d channels in %zu bytes\n", static_cast<int>(audio->channels), audio.buffer(0).size());

    const std::uint8_t text[] = {'C', 'l', 'i', 'p'};
    qorv::Bytes title;
    if (title.set(text, 7) != qorv::Status::ok) return 1;
    std::printf("title: %s\n", reinterpret_cast<const char *>(title.bytes().data()));  // zero bytes follow the copy
    return title.bytes().size() == 4 ? 0 : 1;
}
