// Where two pictures differ first, in the picture's terms.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <type_traits>

namespace test {

// Compares samples that lie one after the other, in rows of `columns` samples and planes of `rows` rows (0: one plane).
// Empty if all agree: EXPECT_EQ(first_difference<uint8_t>(expected, got, w, h), "") says "plane 1, row 2, column 3:
// expected 4, got 5".
template <class Sample>
std::string first_difference(std::span<const std::type_identity_t<Sample>> expected,
                             std::span<const std::type_identity_t<Sample>> got, size_t columns, size_t rows = 0) {
    const auto number = [](auto value) { return std::to_string(value); };
    if (expected.size() != got.size()) return number(expected.size()) + " samples expected, got " + number(got.size());
    const auto pair = std::mismatch(expected.begin(), expected.end(), got.begin());
    if (pair.first == expected.end()) return {};
    const auto index = static_cast<size_t>(pair.first - expected.begin());
    const size_t row = index / columns;
    return (rows == 0 ? "" : "plane " + number(row / rows) + ", ") + "row " + number(rows == 0 ? row : row % rows) +
           ", column " + number(index % columns) + ": expected " + number(+*pair.first) + ", got " +
           number(+*pair.second);
}

}  // namespace test
