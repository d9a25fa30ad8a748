#pragma once

#include <optional>
#include <string>

namespace Velora::Store {

/// The stored text of a number that not every database can store as a number: "NaN:" and sixteen hexadecimal digits for
/// NaN ("NaN:7ff8000000000000"), and "-0.0" for negative zero. Nothing for other numbers, which are stored as numbers.
std::optional<std::string> TextKeptForNumber(double value);

}  // namespace Velora::Store
