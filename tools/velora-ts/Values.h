#pragma once

#include "Rows.h"

#include <string>

// The parameters of events, and how their values are shown.

/// The parameters of an event, in their order.
inline constexpr const char* parametersOfEvent =
    "SELECT position, name, kind, value_text, value_number FROM parameters WHERE event_id = ?1 ORDER BY position";

/// Appends the value of the parameter where such rows stand as JSON: docs/record-format.md.
void AppendParameterValue(std::string& json, const Rows& parameters);
/// The same as one reads it: a text as it is, NaN by that name.
std::string ValueInWords(const Rows& parameters);
/// Whether it is a text to whoever recorded it, not a number that is kept as one.
bool IsText(const Rows& parameters);
/// Name and value, printable.
std::string ParameterInWords(const Rows& parameters);
