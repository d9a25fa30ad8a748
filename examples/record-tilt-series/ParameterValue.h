#pragma once

#include <cstdint>
#include <string>
#include <variant>

using ParameterValue = std::variant<std::int32_t, double, std::string>;

/// The value of a text. It is a number only if the number is written as the same text; otherwise it is the text. So "3"
/// is an integer and "-54.01" a double, but "3.10", "+1" and "007" stay texts.
ParameterValue TypedValue(const std::string& text);
