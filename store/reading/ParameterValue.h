#pragma once

#include "store/reading/Rows.h"

#include <optional>
#include <string>

namespace Velora::Store {

// The parameter of an event at which rows of position, name, kind, value as text and value as number stand.

/// Appends the value as JSON, in the form of docs/record-format.md.
void AppendParameterValue(std::string& json, const Rows& parameters);

/// The value for a reader: a text as it was given, true or false, a number in digits, "NaN", "inf".
std::string ValueInWords(const Rows& parameters);
/// Appends that. @return whether the host recorded a text.
bool AppendValueInWords(std::string& words, const Rows& parameters);

/// Whether the host recorded a text. Some numbers, such as NaN, are stored as texts too.
bool IsText(const Rows& parameters);

/// The number that the host recorded, or that the text reads as. Nothing for truth values and other texts.
std::optional<double> NumberOf(const Rows& parameters);

/// @throws Error when the name or the value is too long to be shown.
void ExpectShowable(const Rows& parameters);

}  // namespace Velora::Store
