#pragma once

#include "store/values/StoredTime.h"

#include <string>

namespace Velora::Ts {

/// How the help of an option for a time ends.
#define VELORA_TIME_FORMS "2026-11-24, '2026-11-24 21:55', 21:55, yesterday, -2h; local unless it has an offset or Z"

/// The beginning of a stored time, from a time on the command line. It can be compared with stored times as a text,
/// however short it is.
///
/// The forms are a month, a date, a date and a time of day, a time of day (the newest that is past), "today" and
/// "yesterday", also with a time of day, and "-2h" (two hours ago; also d, m and s). Without Z or an offset they are
/// local. A time that local clocks show twice is the first of both; one that they skip is the moment of the change.
/// @throws UsageError when the text has another form, or there is no such time.
std::string TimeArgument(const std::string& text, Store::Time now = Store::Now());

}  // namespace Velora::Ts
