// Text that reaches a terminal or a JSON reader, whatever a file put into it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

// Control characters and bytes that are no UTF-8 as \xNN, so that nothing from a file steers a terminal. Line feeds
// stay.
std::string printable(std::string_view text);

// A JSON string, quotes included. What is no UTF-8 is made so as printable() does it.
std::string json_string(std::string_view text);

// The whole text as a number without sign; false when it is anything else.
bool parse_number(std::string_view text, uint32_t &value);

// WIDTHxHEIGHT, each from 1 to 32768; false when it is anything else.
bool parse_dimensions(const std::string &text, uint32_t &width, uint32_t &height);

}  // namespace tool
