// Reader of AVI files: the streams, the frames of a stream and what the index says of them. Also the OpenDML
// continuation (RIFF chunks 'AVIX'), whose frames are not in the old index.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/base/random_access.h"

namespace tool {

struct AviStream {
    uint32_t type = 0;  // four-character codes: "vids", "auds", ...
    uint32_t handler = 0;
    uint32_t scale = 0, rate = 0;  // rate / scale frames or blocks a second
    uint32_t codec = 0;            // FourCC of video, WAVE format tag of audio
    int32_t width = 0, height = 0;
    uint32_t channels = 0, sample_rate = 0;

    bool is_video() const;
    bool is_audio() const;
};

struct AviFrame {
    enum class Index : uint8_t { kNone, kKey, kOther };
    uint64_t offset = 0;  // of its data
    uint32_t size = 0;
    Index index = Index::kNone;
};

std::string fourcc_text(uint32_t code);

// Reads the structure when it is made and the frames on demand. Every failure is thrown as an Error that names the
// file, the offset and the reason. What it allocates is bounded by the file's size.
class AviReader {
public:
    explicit AviReader(const std::string &path);  // "-" is standard input

    const std::vector<AviStream> &streams() const { return streams_; }
    // What is odd about the file, and yet no reason not to read it.
    const std::vector<std::string> &warnings() const { return warnings_; }
    // The frames of a video stream, in the file's order.
    const std::vector<AviFrame> &frames(size_t stream) const { return frames_[stream]; }
    // Reads a frame's data, followed by one zero byte that does not belong to it.
    void read(const AviFrame &frame, std::vector<uint8_t> &data);

private:
    struct Chunk {
        uint32_t id;
        uint64_t offset;  // of its data
        uint32_t size;
    };

    template <class Visit>
    void each_chunk(uint64_t begin, uint64_t end, Visit visit);
    template <class Visit>
    void each_list(uint64_t begin, uint64_t end, const char *type, Visit visit);
    Chunk chunk_at(uint64_t at, uint64_t end);
    std::vector<uint8_t> read_header(const Chunk &chunk, size_t least);
    void read_file();
    void read_riff(const Chunk &riff, bool first);
    void read_stream(uint64_t begin, uint64_t end);
    void read_frames(uint64_t begin, uint64_t end);
    void add_frame(const Chunk &chunk);
    void read_index(const Chunk &chunk);

    std::string path_;
    RandomAccessFile file_;
    std::vector<AviStream> streams_;
    std::vector<std::string> warnings_;
    std::vector<std::vector<AviFrame>> frames_;
};

}  // namespace tool
