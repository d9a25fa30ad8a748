#pragma once

#include "comparing/Differences.h"

#include <string>
#include <utility>

namespace Velora::Ts {

/// What is said of a single difference of two runs.
class DifferenceWords {
 public:
  /// @param digits the significant digits of numbers.
  DifferenceWords(const Differences& found, int digits);

  /// How the runs are called.
  const std::string& One() const { return one; }
  const std::string& Other() const { return other; }

  /// A name, with a number if it is not the first of this name.
  static std::string Name(const std::string& name, std::size_t occurrence);
  /// The path of an execution and, if it is about one, the event.
  std::string Where(const Store::Compared& compared, bool withRoot) const;
  std::string What(const Store::Compared& compared) const;
  std::string Durations(const Store::Compared& compared) const;
  /// Both values; with all digits if they look the same with fewer.
  std::pair<std::string, std::string> Both(const Store::Compared& compared) const;
  std::string Difference(const Store::Compared& compared) const;

 private:
  std::string Side(const Store::Compared& compared) const;
  std::string InWords(const Store::Compared& compared, bool ofFirst, int shown) const;

  const Differences& found;
  const int digits;
  std::string one, other;
};

}  // namespace Velora::Ts
