#pragma once

#include "store/asking/Names.h"
#include "verbs/ExitCode.h"

#include <string>

namespace Velora::Ts {

/// Says on standard error why nothing that was asked for has a name: it is in other events only, or nowhere, and then
/// which names are near.
/// @param name as stored.
/// @return Found if it is nowhere, else Done.
ExitCode ExplainAbsence(const Store::Reader& store, Store::Named kind, const std::string& name);

}  // namespace Velora::Ts
