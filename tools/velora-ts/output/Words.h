#pragma once

#include "store/reading/Executions.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

// What was recorded, for a person. Every text from here is printable: it cannot steer a terminal.

/// A stored text, readable and printable.
std::string Shown(std::string_view stored);

/// A line that identifies a run: guid, node and time.
std::string InWords(const Store::Run& run);
/// The run that matches a name, in the sense of RunsNamed(). If there is none or several, writes that to standard error
/// and returns nothing.
std::optional<Store::Run> TheRunNamed(const Store::Reader& store, const std::string& name);

/// How tables show an execution that did not finish, or a run that has one: in capitals, so that nobody overlooks it.
inline constexpr const char* unfinishedInWords = "UNFINISHED";
/// "done", "UNFINISHED", "status N" for any other status, or "no status".
std::string StateInWords(const Store::Execution& execution);
/// The name and version of an execution's activity.
std::string ActivityInWords(const Store::Execution& execution);
/// The duration of an execution. Empty if it is running.
/// @param fractions whether to show milliseconds.
std::string DurationInWords(const Store::Execution& execution, bool fractions);
/// The members of the JSON object for an execution, without braces.
std::string JsonMembers(const Store::Execution& execution);

/// How many significant digits a number is shown with.
inline constexpr int usualDigits = 6;
inline constexpr int allDigits = 0;  ///< As many as tell it from every other number.
/// A number in so many digits, though never without one before the point: 0.123457, 1234567, 1.23457e+20.
std::string NumberInWords(double number, int digits = usualDigits);

// The parameter at which rows of parameters stand. A text is shown as it was recorded, also if it is a number.

/// The value. A whole number that the host gave as such has all its digits.
std::string ValueOf(const Store::Rows& parameters, int digits = usualDigits);
/// NAME=VALUE.
std::string ParameterInWords(const Store::Rows& parameters, int digits = usualDigits);
/// Whether the value is a number, which tables align at the right.
bool IsNumber(const Store::Rows& parameters);

}  // namespace Velora::Ts
