// Runs a fuzz target on saved inputs: files, or folders of files.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "input.h"

namespace {

int replayed = 0;

void replay(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    replayed++;
}

}  // namespace

int main(int argc, char **argv) {
    for (int i = 1; i < argc; i++) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (entry.is_regular_file()) replay(entry.path());
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
