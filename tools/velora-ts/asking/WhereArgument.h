#pragma once

#include "store/asking/Condition.h"

#include <string>
#include <vector>

namespace Velora::Ts {

/// The conditions in the texts of --where, each of them one or several, joined by "and":
///
///     CONDITION = NAME OPERATOR VALUE
///     OPERATOR  = "=" | "!=" | "<" | "<=" | ">" | ">="
///
/// A NAME ends before the operator, a VALUE before "and". Both can contain blanks. In single or double quotes they can
/// contain anything; a quote is doubled. A VALUE without quotes that reads as a number is one. Others are texts, and
/// only texts in quotes have an order.
/// @throws UsageError, which says what was expected where.
std::vector<Store::Condition> WhereArgument(const std::vector<std::string>& texts);

}  // namespace Velora::Ts
