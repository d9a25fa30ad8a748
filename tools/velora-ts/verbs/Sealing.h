#pragma once

#include "verbs/ExitCode.h"

#include <string>

namespace Velora::Store {
class Reader;
class Writer;
}  // namespace Velora::Store

namespace Velora::Ts {

/// Seals one state of a store, as the verb `seal` does, and says what.
/// @param anchorFile empty for none. An anchor there that contradicts the store is not replaced.
/// @param before the file of the store that this one continues. An anchor of that one is replaced, too.
ExitCode SealWith(Store::Writer& writer, const Store::Reader& store, const std::string& anchorFile,
                  const std::string& before = "");

}  // namespace Velora::Ts
