#pragma once

#include "store/reading/Executions.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

// What was recorded, in words for a person to read. All of it is printable.

/// A stored text.
std::string Shown(std::string_view stored);

/// A run in words that name it.
std::string InWords(const Store::Run& run);
/// The only run that a name stands for. Where there is not exactly one, standard error has said so.
std::optional<Store::Run> TheRunNamed(const Store::Reader& store, const std::string& name);

/// The state of what did not finish, which must not be overlooked.
inline constexpr const char* unfinishedInWords = "UNFINISHED";
std::string StateInWords(const Store::Execution& execution);
/// The activity with its version.
std::string ActivityInWords(const Store::Execution& execution);
/// How long a finished execution took; empty for one that did not finish.
/// @param fractions whether to show milliseconds.
std::string DurationInWords(const Store::Execution& execution, bool fractions);
/// Members of a JSON object that says of an execution what these words do, without its braces.
std::string JsonMembers(const Store::Execution& execution);

/// Name and value of the parameter where rows of parameters stand.
std::string ParameterInWords(const Store::Rows& parameters);

}  // namespace Velora::Ts
