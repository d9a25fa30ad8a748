#pragma once

#include "store/reading/Rows.h"

#include <optional>
#include <string>

namespace Velora::Store {

/// A condition on a parameter of an event, such as Dose > 40.
struct Condition {
  enum class Operator { Equal, Unequal, Less, LessOrEqual, Greater, GreaterOrEqual };

  std::string name;  ///< Of the parameter, as stored.
  Operator comparison = Operator::Equal;
  std::string text;              ///< What its value is compared with.
  std::optional<double> number;  ///< If it is compared as a number.

  /// Whether the parameter at which rows of parameters stand fulfils it. Its name is not looked at. A number is
  /// compared with numbers and with texts that read as numbers, and differs from all other values. A text is equal to
  /// the same words, and has an order among texts only.
  bool IsFulfilledBy(const Rows& parameter) const;
};

}  // namespace Velora::Store
