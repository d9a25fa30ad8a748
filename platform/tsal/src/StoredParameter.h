#pragma once

#include <TSAL/Types.h>

#include <optional>
#include <string>

namespace Quor::TolvaServices::Local {

/// A parameter as its row has it: a text or a number.
struct StoredParameter {
  std::string name;
  const char* kind;
  std::optional<std::string> text;
  std::optional<double> number;
};

/// The row of the parameter at a position, from 1 on.
/// @throws TsError when there is none behind the reference.
StoredParameter ToStored(const Types::InstrumentEvent& event, std::size_t position);

}  // namespace Quor::TolvaServices::Local
