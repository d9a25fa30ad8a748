#pragma once

#include "store/schema/BringUp.h"

#include <string>

namespace Velora::Store {

/// Makes a store in an empty file, which nobody else knows yet. No log stays beside it.
/// @param previous the store that it continues.
void MakeStore(const std::string& file, const Continued& previous);

}  // namespace Velora::Store
