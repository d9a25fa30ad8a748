#pragma once

#include "store/record/Seals.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Ts {

/// Where the chain of seals ended, kept in a file away from the store: "seal 12 HASH".
struct Anchor {
  long long number = 0;  ///< 0, and a hash of zeros, before the first seal.
  std::string hash;
};

/// @throws Error when the file cannot be read or is no anchor.
Anchor ReadAnchor(const std::string& file);
/// Replaces the file as a whole, so that none is ever half there.
void WriteAnchor(const std::string& file, const Anchor& anchor);

/// What a chain of seals lacks or has otherwise than the anchor says; empty when it goes on from there.
std::string AnchorFinding(const Anchor& anchor, const std::vector<Store::Seal>& seals);

}  // namespace Velora::Ts
