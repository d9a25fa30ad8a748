#pragma once

#include <cstdint>
#include <string>
#include <variant>

using ParameterValue = std::variant<std::int32_t, double, std::string>;

/// The value that a text writes: a number only where that number writes back the very same text, otherwise the text.
/// So "3" is an integer and "-54.01" a double, while "3.10", "+1" and "007" stay what they are.
ParameterValue TypedValue(const std::string& text);
