#pragma once

#include "store/record/Seals.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// The last seal of a chain at some time. It is kept in a file away from the store: "seal 12 HASH".
struct Anchor {
  long long number = 0;  ///< Before the first seal 0, with a hash of zeros.
  std::string hash;
};

/// Reads an anchor. @throws Error when the file cannot be read or is not an anchor.
Anchor ReadAnchor(const std::string& file);
/// Writes an anchor. An existing file is replaced at once, so that it is never incomplete.
void WriteAnchor(const std::string& file, const Anchor& anchor);

/// How the chain of seals of a store contradicts an anchor; empty if the chain contains it.
/// @param origin the number of the store whose chain it is.
std::string AnchorFinding(const Anchor& anchor, const Store::Reader& store, long long origin);

}  // namespace Velora::Ts
