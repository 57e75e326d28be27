// Files that the program writes, and standard output.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tool {

// Has unfinished files removed when SIGHUP, SIGINT or SIGTERM ends the program. To be called once, before any thread is
// made; threads that create files must not be interrupted by these signals in between, so others block them.
void remove_unfinished_files_on_signals();

// An output that appears whole or not at all: it is written to a new file of another name in the same folder, which
// commit() gives its name. A link is followed to where it points; what exists and is no regular file, a pipe or a
// device, is written to as it is, and so is standard output ("-"). Without a commit() what was there stays.
// Failures are thrown as an Error that names the path as the user gave it.
class OutputFile {
public:
    explicit OutputFile(const std::string &path);
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    void write(std::span<const uint8_t> data);
    void write(const std::string &text);
    void commit();

private:
    void create_beside();
    void discard();
    [[noreturn]] void fail(int error);

    std::string path_;
    std::string target_;     // behind links
    std::string temporary_;  // empty where the target itself is written to
    int fd_ = -1;
    bool replaces_ = false;
    uint32_t mode_ = 0;  // of the file that is replaced
};

// Writes the whole of a file at once.
void write_file(const std::string &path, std::span<const uint8_t> data);

}  // namespace tool
