// Writes a small header and reads it back, then reads through a refill that drops emulation-prevention bytes.
#include <cstdio>
#include <qorv_skia.hpp>

namespace {
// A reader of NAL units: the refill's own state lies behind the record.
class NalReader : public qorv::BitReader {
public:
    explicit NalReader(qorv::Span<const std::uint8_t> bytes) : BitReader(bytes, refill) {}

private:
    // Loads up to `count` bytes without the 03 of each 00 00 03.
    static std::int32_t refill(QORV_BSR *bsr, std::int32_t count) {
        NalReader &nal = *static_cast<NalReader *>(bsr);
        std::uint32_t word = 0;
        std::int32_t loaded = 0;
        while (loaded < count && nal.cur <= nal.end) {
            const std::uint8_t byte = *nal.cur++;
            if (nal.zeros_ == 2 && byte == 3) {
                nal.zeros_ = 0;
                continue;
            }
            nal.zeros_ = byte != 0 ? 0 : nal.zeros_ < 2 ? nal.zeros_ + 1 : 2;
            word |= static_cast<std::uint32_t>(byte) << (24 - 8 * loaded);
            loaded++;
        }
        nal.code = word;
        nal.leftbits = 8 * loaded;
        return loaded > 0 ? 0 : QORV_ERR;
    }

    int zeros_ = 0;  // zero bytes passed just now, at most 2
};
}  // namespace

int main() {
    std::uint8_t bytes[16];  // at least one more than is written
    qorv::BitWriter writer(bytes);
    if (writer.write(0x42, 8) != qorv::Status::ok) return 1;  // a profile
    writer.write1(1);                                         // a flag
    writer.write_ue(119);                                     // width in macroblocks - 1
    writer.write_se(-2);                                      // an offset
    if (writer.sink() != qorv::Status::ok) return 1;
    std::printf("%zu bytes written\n", writer.written().size());

    qorv::BitReader reader(writer.written());
    const std::uint32_t profile = reader.read(8), flag = reader.read1(), width = reader.read_ue();
    const std::int32_t offset = reader.read_se();
    std::printf("profile %u, flag %u, width %u, offset %d\n", static_cast<unsigned>(profile),
                static_cast<unsigned>(flag), static_cast<unsigned>(width), static_cast<int>(offset));
    if (profile != 0x42 || flag != 1 || width != 119 || offset != -2) return 1;

    const std::uint8_t escaped[] = {0x00, 0x00, 0x03, 0x01, 0xFF};
    NalReader nal(escaped);
    const std::uint32_t word = nal.read(32);
    std::printf("without the escape: %08x\n", static_cast<unsigned>(word));
    return word == 0x000001FF ? 0 : 1;
}
