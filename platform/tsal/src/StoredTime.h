#pragma once

#include <TSAL/Types.h>

#include <string>

// How times stand in the store's columns: UTC, "2026-11-24T21:55:03.123456Z". Texts in this form sort by time.

namespace Quor::TolvaServices::Local {

/// A stated time; the current one when none is stated.
/// @throws TsError for a time outside the years 0 to 9999.
std::string ToStoredTime(const Types::DateTimeOffset& time);
Types::DateTimeOffset FromStoredTime(const std::string& stored);

}  // namespace Quor::TolvaServices::Local
