#pragma once

#include <map>
#include <string>
#include <utility>

namespace Velora::Ts {

/// The units of parameters: what TSAL.config states, else what the name of a parameter has in brackets at its end, as
/// in "Defocus [um]" or "Dose (e/A^2)".
class Units {
 public:
  Units() = default;
  /// @param stated units by the names of parameters.
  explicit Units(std::map<std::string, std::string> stated) : stated(std::move(stated)) {}

  /// The unit of a parameter; empty if none is known.
  std::string Of(const std::string& name) const;
  /// The name of a parameter as the head of a column: with its unit behind, unless it has one itself. Printable.
  std::string Head(const std::string& name) const;

 private:
  std::map<std::string, std::string> stated;
};

}  // namespace Velora::Ts
