#include "store/asking/Condition.h"

#include "store/reading/ParameterValue.h"

#include <compare>

namespace Velora::Store {

namespace {

bool Holds(Condition::Operator comparison, std::partial_ordering order) {
  switch (comparison) {
    case Condition::Operator::Equal:
      return std::is_eq(order);
    case Condition::Operator::Unequal:
      return std::is_neq(order);
    case Condition::Operator::Less:
      return std::is_lt(order);
    case Condition::Operator::LessOrEqual:
      return std::is_lteq(order);
    case Condition::Operator::Greater:
      return std::is_gt(order);
    case Condition::Operator::GreaterOrEqual:
      return std::is_gteq(order);
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
