#pragma once

#include <string>

// How doubles stand in the store: as a number, but for the two that no column keeps on every database. NaN is kept as
// text with its sixteen hexadecimal digits, "NaN:7ff8000000000000", and negative zero as "-0.0".

namespace Quor::TolvaServices::Local {

/// The written form of such a value; empty for every other.
std::string WrittenWhereNoColumnHolds(double value);

}  // namespace Quor::TolvaServices::Local
