#pragma once

#include "reading/Rows.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Velora::Ts {

// The parameters of events, and how their values are shown.

/// A text as it was given to be recorded; U+FFFD for a byte that is no part of a character, and for a zero.
std::string Readable(std::string_view stored);
/// The same, printable.
std::string Shown(std::string_view stored);

/// Appends the value of the parameter where rows of position, name, kind, and value as text and as number stand as
/// JSON: docs/record-format.md.
void AppendParameterValue(std::string& json, const Rows& parameters);
/// The same as one reads it: a readable text, NaN by that name.
std::string ValueInWords(const Rows& parameters);
/// @throws TsError where it is too long to be shown.
void ExpectShowable(const Rows& parameters);
/// Whether it is a text to whoever recorded it, not a number that is kept as one.
bool IsText(const Rows& parameters);
/// The number that a text reads as, as 3.10 is kept as one to keep its digits; nothing for none that can be drawn.
std::optional<double> NumberIn(std::string_view text);
/// Name and value, printable.
std::string ParameterInWords(const Rows& parameters);

/// A name as it was given for the first time, and with a number behind it for another one.
/// @param occurrence the number to begin with.
std::string UniqueName(std::set<std::string>& taken, const std::string& name, int occurrence = 1);

}  // namespace Velora::Ts
