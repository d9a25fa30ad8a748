#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// A parameter as its row has it: a text or a number.
struct ParameterRow {
  std::string name;
  const char* kind = "";
  std::optional<std::string> text;
  std::optional<double> number;
};

/// An event as its row has it, and its parameters in the order of their positions, from 1 on. Texts are in the form in
/// which the store keeps them.
struct EventRow {
  long long session = 0;
  std::optional<long long> execution;
  std::optional<long long> configuration;
  std::string name;
  std::string at;
  std::vector<ParameterRow> parameters;
};

}  // namespace Velora::Store
