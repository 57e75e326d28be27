// Pictures with numbers in their names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// "frame-%03d.png" stands for frame-000.png and so on; a name without such a number gets one before its extension:
// OUT.png stands for OUT-00000.png.
class NumberedName {
public:
    explicit NumberedName(const std::string &name);
    std::string operator()(uint64_t number) const;

    // Whether a name holds a number as above.
    static bool has_number(const std::string &name);
    // The lowest number, 0 to 9, whose file exists.
    std::optional<uint64_t> first() const;

private:
    std::string before_, after_;
    int digits_ = 5;
};

}  // namespace tool
