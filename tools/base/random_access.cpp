#include "tools/base/random_access.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "qorv_skia.h"
#include "tools/base/error.h"

namespace tool {

namespace {

// Copies what is left of the input, and says how many bytes that was.
Descriptor copy_to_temporary(Input &input, uint64_t &size) {
    char folder[8];
    qorv_get_temp_path(folder);
    std::string name = std::string(folder) + "qorv-XXXXXX";
    Descriptor fd(mkostemp(name.data(), O_CLOEXEC));
    if (fd >= 0) unlink(name.c_str());
    size = 0;
    for (;;) {
        const std::vector<uint8_t> piece = input.read_all(1 << 20);
        if (piece.empty()) return fd;
        for (size_t done = 0; done < piece.size();) {
            const ssize_t wrote = fd < 0 ? -1 : write(fd, piece.data() + done, piece.size() - done);
            if (wrote < 0)
                throw Error(input.path() + ": no temporary copy could be made in " + folder + ": " +
                            std::strerror(errno));
            done += static_cast<size_t>(wrote);
        }
        size += piece.size();
    }
}

}  // namespace

RandomAccessFile::RandomAccessFile(Input input)
    : path_(input.path()), fd_(input.size() ? input.take_descriptor() : copy_to_temporary(input, size_)) {
    const std::optional<uint64_t> size = input.size();
    if (!size) return;
    size_ = *size - input.offset();
    const off_t at = lseek(fd_, 0, SEEK_CUR);
    begin_ = static_cast<uint64_t>(at) - input.buffered();
}

void RandomAccessFile::read(uint64_t offset, void *to, size_t bytes) const {
    if (offset > size_ || bytes > size_ - offset) throw error_at(path_, offset, "the file ends here");
    for (size_t done = 0; done < bytes;) {
        const ssize_t got =
            pread(fd_, static_cast<uint8_t *>(to) + done, bytes - done, static_cast<off_t>(begin_ + offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw error_at(path_, offset, std::string("cannot be read: ") + std::strerror(errno));
        if (got == 0) throw error_at(path_, offset + done, "the file was truncated while it was read");
        done += static_cast<size_t>(got);
    }
}

}  // namespace tool
