#include "tools/stream/avi.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "qorv_skia.h"
#include "tools/base/error.h"

namespace tool {

namespace {

constexpr size_t kChunkHeader = 8;  // identifier and size
constexpr size_t kIndexEntry = 16;  // identifier, flags, offset, size
constexpr uint32_t kIndexKey = 0x10;
constexpr size_t kMaxStreams = 100;  // two decimal digits name the stream of a chunk

constexpr uint32_t fcc(const char (&text)[5]) {
    return QORV_FCC(text[0], text[1], text[2], text[3]);
}

uint32_t get16(const uint8_t *data) {
    return static_cast<uint32_t>(data[0] | data[1] << 8);
}

uint32_t get32(const uint8_t *data) {
    return get16(data) | get16(data + 2) << 16;
}

// The stream that a chunk "NNdc" or "NNdb" (video, compressed or not) belongs to; -1 for other chunks.
int video_stream_of(uint32_t id) {
    const uint32_t tens = (id & 0xFF) - '0', ones = (id >> 8 & 0xFF) - '0';
    const uint32_t kind = id >> 16;
    if (tens > 9 || ones > 9 || (kind != fcc("00dc") >> 16 && kind != fcc("00db") >> 16)) return -1;
    return static_cast<int>(10 * tens + ones);
}

// Opens the file, which begins with a RIFF chunk of the form "AVI ": looked at before a pipe is copied.
RandomAccessFile open_avi(const std::string &path) {
    constexpr size_t kHead = 12;
    Input input(path);
    const std::span<const uint8_t> head = input.peek();
    if (head.empty()) throw error_at(path, 0, "the file is empty");
    if (head.size() < kHead || std::memcmp(head.data(), "RIFF", 4) != 0 || std::memcmp(&head[8], "AVI ", 4) != 0) {
        throw error_at(path, 0, "not an AVI file");
    }
    return RandomAccessFile(std::move(input));
}

}  // namespace

std::string fourcc_text(uint32_t code) {
    std::string text;
    for (int i = 0; i < 4; i++) {
        const int c = static_cast<int>(code >> (8 * i) & 0xFF);
        text += std::isprint(c) != 0 ? static_cast<char>(c) : '.';
    }
    return text;
}

bool AviStream::is_video() const {
    return type == fcc("vids");
}

bool AviStream::is_audio() const {
    return type == fcc("auds");
}

AviReader::AviReader(const std::string &path) : path_(path), file_(open_avi(path)) {
    read_file();
}

AviReader::Chunk AviReader::chunk_at(uint64_t at, uint64_t end) {
    if (end - at < kChunkHeader) throw error_at(path_, at, "a chunk header is cut off");
    uint8_t header[kChunkHeader];
    file_.read(at, header, sizeof header);
    const Chunk chunk = {get32(header), at + kChunkHeader, get32(header + 4)};
    if (chunk.size > end - chunk.offset) {
        throw error_at(path_, at,
                       "truncated or damaged: chunk '" + fourcc_text(chunk.id) + "' of " + std::to_string(chunk.size) +
                           " bytes, where " + std::to_string(end - chunk.offset) + " are left");
    }
    return chunk;
}

// Calls visit(Chunk) for the chunks that fill [begin, end).
template <class Visit>
void AviReader::each_chunk(uint64_t begin, uint64_t end, Visit visit) {
    for (uint64_t at = begin; at < end;) {
        const Chunk chunk = chunk_at(at, end);
        visit(chunk);
        at = chunk.offset + chunk.size + chunk.size % 2;
    }
}

// Calls visit(begin, end) for the content of every list of the given type.
template <class Visit>
void AviReader::each_list(uint64_t begin, uint64_t end, const char *type, Visit visit) {
    each_chunk(begin, end, [&](const Chunk &chunk) {
        if (chunk.id != fcc("LIST")) return;
        const std::vector<uint8_t> head = read_header(chunk, 4);
        if (std::memcmp(head.data(), type, 4) == 0) visit(chunk.offset + 4, chunk.offset + chunk.size);
    });
}

// The first bytes of a chunk, as many as are needed of it.
std::vector<uint8_t> AviReader::read_header(const Chunk &chunk, size_t least) {
    if (chunk.size < least) {
        throw error_at(path_, chunk.offset,
                       "chunk '" + fourcc_text(chunk.id) + "' has " + std::to_string(chunk.size) + " bytes and needs " +
                           std::to_string(least));
    }
    std::vector<uint8_t> data(least);
    file_.read(chunk.offset, data.data(), least);
    return data;
}

// What follows the last RIFF chunk and is none is no part of the AVI file.
void AviReader::read_file() {
    const uint64_t end = file_.size();
    for (uint64_t at = 0; at < end;) {
        uint8_t id[4] = {};
        if (end - at >= kChunkHeader) file_.read(at, id, sizeof id);
        if (at != 0 && get32(id) != fcc("RIFF")) {
            warnings_.push_back(path_ + ": at byte " + std::to_string(at) + ": " + std::to_string(end - at) +
                                " stray bytes after the end of the AVI file");
            return;
        }
        const Chunk riff = chunk_at(at, end);
        read_riff(riff, at == 0);
        at = riff.offset + riff.size + riff.size % 2;
    }
}

void AviReader::read_riff(const Chunk &riff, bool first) {
    const uint32_t form = get32(read_header(riff, 4).data());
    if (form != (first ? fcc("AVI ") : fcc("AVIX"))) {
        throw error_at(path_, riff.offset - kChunkHeader,
                       "a continuation was expected: form '" + fourcc_text(form) + "'");
    }
    const uint64_t begin = riff.offset + 4, end = riff.offset + riff.size;
    if (first) {
        each_list(begin, end, "hdrl", [&](uint64_t b, uint64_t e) {
            each_list(b, e, "strl", [&](uint64_t from, uint64_t to) { read_stream(from, to); });
        });
        frames_.resize(streams_.size());
    }
    each_list(begin, end, "movi", [&](uint64_t b, uint64_t e) { read_frames(b, e); });
    each_chunk(begin, end, [&](const Chunk &chunk) {
        if (chunk.id == fcc("idx1")) read_index(chunk);
    });
}

void AviReader::read_stream(uint64_t begin, uint64_t end) {
    if (streams_.size() == kMaxStreams) throw error_at(path_, begin, "more than 100 streams");
    AviStream stream;
    each_chunk(begin, end, [&](const Chunk &chunk) {
        if (chunk.id == fcc("strh")) {
            const std::vector<uint8_t> header = read_header(chunk, 28);
            stream.type = get32(&header[0]);
            stream.handler = get32(&header[4]);
            stream.scale = get32(&header[20]);
            stream.rate = get32(&header[24]);
        } else if (chunk.id == fcc("strf") && stream.is_video()) {
            const std::vector<uint8_t> header = read_header(chunk, 20);
            stream.width = static_cast<int32_t>(get32(&header[4]));
            stream.height = static_cast<int32_t>(get32(&header[8]));
            stream.codec = get32(&header[16]);
        } else if (chunk.id == fcc("strf") && stream.is_audio()) {
            const std::vector<uint8_t> header = read_header(chunk, 8);
            stream.codec = get16(&header[0]);
            stream.channels = get16(&header[2]);
            stream.sample_rate = get32(&header[4]);
        }
    });
    streams_.push_back(stream);
}

// Frames stand in the list itself or, grouped for reading in one go, in lists of type "rec ".
void AviReader::read_frames(uint64_t begin, uint64_t end) {
    each_chunk(begin, end, [&](const Chunk &chunk) {
        if (chunk.id != fcc("LIST")) return add_frame(chunk);
        each_chunk(chunk.offset + read_header(chunk, 4).size(), chunk.offset + chunk.size,
                   [&](const Chunk &inner) { add_frame(inner); });
    });
}

void AviReader::add_frame(const Chunk &chunk) {
    const int stream = video_stream_of(chunk.id);
    if (stream < 0) return;
    if (static_cast<size_t>(stream) >= streams_.size()) {
        throw error_at(path_, chunk.offset - kChunkHeader,
                       "chunk '" + fourcc_text(chunk.id) + "' of a stream that is not in the header");
    }
    if (chunk.size > INT32_MAX) throw error_at(path_, chunk.offset - kChunkHeader, "a frame of 2 GiB or more");
    frames_[static_cast<size_t>(stream)].push_back({chunk.offset, chunk.size, AviFrame::Index::kNone});
}

// The n-th entry of a stream belongs to its n-th frame.
void AviReader::read_index(const Chunk &chunk) {
    std::vector<size_t> next(streams_.size());
    std::vector<uint8_t> entries(kIndexEntry * 4096);
    for (uint64_t done = 0; chunk.size - done >= kIndexEntry;) {
        const size_t bytes = static_cast<size_t>(std::min<uint64_t>(entries.size(), chunk.size - done));
        file_.read(chunk.offset + done, entries.data(), bytes);
        for (size_t i = 0; i + kIndexEntry <= bytes; i += kIndexEntry, done += kIndexEntry) {
            const int stream = video_stream_of(get32(&entries[i]));
            if (stream < 0 || static_cast<size_t>(stream) >= streams_.size()) continue;
            std::vector<AviFrame> &frames = frames_[static_cast<size_t>(stream)];
            const size_t n = next[static_cast<size_t>(stream)]++;
            if (n >= frames.size() || frames[n].size != get32(&entries[i + 12])) {
                throw error_at(path_, chunk.offset + done,
                               "the index does not fit the file: entry for frame " + std::to_string(n) + " of stream " +
                                   std::to_string(stream) + ", " + std::to_string(get32(&entries[i + 12])) + " bytes");
            }
            const bool key = (get32(&entries[i + 4]) & kIndexKey) != 0;
            frames[n].index = key ? AviFrame::Index::kKey : AviFrame::Index::kOther;
        }
    }
}

void AviReader::read(const AviFrame &frame, std::vector<uint8_t> &data) {
    data.resize(size_t{frame.size} + 1);
    file_.read(frame.offset, data.data(), frame.size);
    data[frame.size] = 0;
}

}  // namespace tool
