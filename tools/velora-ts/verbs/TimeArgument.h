#pragma once

#include <string>

namespace Velora::Ts {

/// The beginning of a stored time, from a date or a time in UTC on the command line. It can be compared with stored
/// times as a text, however short it is.
/// @throws UsageError when the text has another form.
std::string TimeArgument(const std::string& text);

}  // namespace Velora::Ts
