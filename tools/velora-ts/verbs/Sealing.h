#pragma once

#include "store/record/Merkle.h"
#include "verbs/ExitCode.h"

#include <string>

namespace Velora::Store {
class Reader;
class Writer;
}  // namespace Velora::Store

namespace Velora::Ts {

/// The tree of a store behind its newest seal, as the program that sealed computed it.
struct SealedTree {
  long long before = 0;  ///< The newest seal whose leaves the program found in the tree, and did not compute.
  long long seal = 0;    ///< The newest seal; 0 for none.
  long long size = 0;    ///< How many leaves the tree has.
  Store::Hash root;
};

/// Seals one state of a store, as the verb `seal` does, and says what.
/// @param anchorFile empty for none. An anchor there that contradicts the store is not replaced.
/// @param before the file of the store that this one continues. An anchor of that one is replaced, too.
/// @param tree gets the tree, if something is sealed; null if nobody wants it.
ExitCode SealWith(Store::Writer& writer, const Store::Reader& store, const std::string& anchorFile,
                  const std::string& before = "", SealedTree* tree = nullptr);

}  // namespace Velora::Ts
