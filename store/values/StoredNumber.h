#pragma once

#include <optional>
#include <string>

namespace Velora::Store {

/// The text that stands in the store for a double that no column keeps on every database: "NaN:" and sixteen
/// hexadecimal digits ("NaN:7ff8000000000000"), and "-0.0" for negative zero. Nothing for every other number, which is
/// kept as one.
std::optional<std::string> TextKeptForNumber(double value);

}  // namespace Velora::Store
