#include "tools/output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tools/command.h"

namespace tool {

void write_file(const std::string &path, const std::function<std::string(std::FILE *)> &write) {
    std::error_code unknown;
    const std::filesystem::file_status status = std::filesystem::status(path, unknown);
    const bool in_place = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    const std::string name = in_place ? path : path + ".partial";
    const auto fail = [&](const std::string &reason) { throw Error(path + ": cannot be written: " + reason); };

    std::FILE *const file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) return fail(std::strerror(errno));
    std::string reason = write(file);
    if (std::fclose(file) != 0 && reason.empty()) reason = std::strerror(errno);
    if (reason.empty() && !in_place && std::rename(name.c_str(), path.c_str()) != 0) reason = std::strerror(errno);
    if (reason.empty()) return;
    if (!in_place) std::remove(name.c_str());
    fail(reason);
}

}  // namespace tool
