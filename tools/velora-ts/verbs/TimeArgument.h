#pragma once

#include <string>

namespace Velora::Ts {

/// A time as a command line gives it, in the form of the store: a date, or more of a time in UTC. How it compares with
/// a stored time does not depend on how much of it is given.
/// @throws UsageError when the text has another form.
std::string TimeArgument(const std::string& text);

}  // namespace Velora::Ts
