#pragma once

#include "serving/http/Handler.h"

namespace Velora::Ts {

struct Served;

/// What answers each path.
/// @param served has to outlive it.
Http::Handlers HandlersOf(const Served& served);

}  // namespace Velora::Ts
