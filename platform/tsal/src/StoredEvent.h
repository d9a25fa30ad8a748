#pragma once

#include "store/recording/EventRow.h"

#include <TSAL/Types.h>

namespace Quor::TolvaServices::Local {

/// The row of an event and its parameters.
/// @throws TsError when there is no parameter behind a reference.
Velora::Store::EventRow ToStored(const Types::InstrumentEvent& event);

}  // namespace Quor::TolvaServices::Local
