#include "output/Units.h"

#include "output/Terminal.h"

#include <string_view>

namespace Velora::Ts {

namespace {

/// What stands in brackets at the end of a name; empty for none.
std::string_view InBrackets(std::string_view name) {
  if (!name.ends_with(']') && !name.ends_with(')')) {
    return "";
  }
  const std::size_t open = name.rfind(name.back() == ']' ? '[' : '(');
  return open == std::string_view::npos ? "" : name.substr(open + 1, name.size() - open - 2);
}

}  // namespace

std::string Units::Of(const std::string& name) const {
  const auto found = stated.find(name);
  return found != stated.end() ? found->second : std::string(InBrackets(name));
}

std::string Units::Head(const std::string& name) const {
  const std::string unit = InBrackets(name).empty() ? Of(name) : "";
  return Printable(unit.empty() ? name : name + " [" + unit + ']');
}

}  // namespace Velora::Ts
