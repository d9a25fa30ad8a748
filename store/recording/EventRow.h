#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// The row of a parameter: its value is a text or a number.
struct ParameterRow {
  std::string name;
  const char* kind = "";
  std::optional<std::string> text;
  std::optional<double> number;
};

/// The row of an event, and the rows of its parameters in the order of their positions from 1. Texts are in their
/// stored form.
struct EventRow {
  long long session = 0;
  std::optional<long long> execution;
  std::optional<long long> configuration;
  std::string name;
  std::string at;
  std::vector<ParameterRow> parameters;
};

}  // namespace Velora::Store
