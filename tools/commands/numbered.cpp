#include "tools/commands/numbered.h"

#include <unistd.h>

#include <algorithm>

namespace tool {

namespace {

// Where a "%d" or "%05d" lies and how long it is.
struct Place {
    size_t at = std::string::npos, length = 0;
    int digits = 0;
};

Place find_number(const std::string &name) {
    for (size_t at = name.find('%'); at != std::string::npos; at = name.find('%', at + 1)) {
        if (name.compare(at, 2, "%d") == 0) return {at, 2, 1};
        const bool padded = name.size() >= at + 4 && name[at + 1] == '0' && name[at + 2] >= '1' && name[at + 2] <= '9';
        if (padded && name[at + 3] == 'd') return {at, 4, name[at + 2] - '0'};
    }
    return {};
}

}  // namespace

NumberedName::NumberedName(const std::string &name) {
    const Place place = find_number(name);
    if (place.length != 0) {
        digits_ = place.digits;
        before_ = name.substr(0, place.at);
        after_ = name.substr(place.at + place.length);
        return;
    }
    const size_t dot = name.find_last_of("./");
    const size_t end = dot != std::string::npos && name[dot] == '.' ? dot : name.size();
    before_ = name.substr(0, end) + "-";
    after_ = name.substr(end);
}

std::string NumberedName::operator()(uint64_t number) const {
    const std::string text = std::to_string(number);
    const size_t digits = static_cast<size_t>(digits_);
    return before_ + std::string(digits - std::min(digits, text.size()), '0') + text + after_;
}

bool NumberedName::has_number(const std::string &name) {
    return find_number(name).length != 0;
}

std::optional<uint64_t> NumberedName::first() const {
    for (uint64_t number = 0; number < 10; number++) {
        if (access((*this)(number).c_str(), F_OK) == 0) return number;
    }
    return std::nullopt;
}

}  // namespace tool
