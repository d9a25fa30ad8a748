#pragma once

#include "verbs/ExitCode.h"

#include <string>

namespace Velora::Store {
class Reader;
class Writer;
}  // namespace Velora::Store

namespace Velora::Ts {

/// Seals one state of a store, as the verb `seal` does, and says what.
/// @param anchorFile empty for none.
ExitCode SealWith(Store::Writer& writer, const Store::Reader& store, const std::string& anchorFile);

}  // namespace Velora::Ts
