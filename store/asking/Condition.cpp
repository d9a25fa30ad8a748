#include "store/asking/Condition.h"

#include "store/reading/ParameterValue.h"

#include <compare>

namespace Velora::Store {

namespace {

bool Holds(Condition::Operator comparison, std::partial_ordering order) {
  switch (comparison) {
    case Condition::Operator::Equal:
      return order == 0;
    case Condition::Operator::Unequal:
      return order != 0;
    case Condition::Operator::Less:
      return order < 0;
    case Condition::Operator::LessOrEqual:
      return order <= 0;
    case Condition::Operator::Greater:
      return order > 0;
    case Condition::Operator::GreaterOrEqual:
      return order >= 0;
  }
  return false;
}

}  // namespace

bool Condition::IsFulfilledBy(const Rows& parameter) const {
  if (number) {
    const std::optional<double> given = NumberOf(parameter);
    return given ? Holds(comparison, *given <=> *number) : comparison == Operator::Unequal;
  }
  const bool isOfOrder = comparison != Operator::Equal && comparison != Operator::Unequal;
  return (!isOfOrder || IsText(parameter)) && Holds(comparison, ValueInWords(parameter) <=> text);
}

}  // namespace Velora::Store
