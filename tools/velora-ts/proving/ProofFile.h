#pragma once

#include "proving/Evidence.h"

#include <string>
#include <string_view>
#include <vector>

namespace Velora::Ts {

/// One record of a store, and what shows that it is under a signed seal.
struct Proof {
  std::string record;             ///< In its canonical form, with the line break at its end.
  long long index = 0;            ///< The number of its leaf, counted from 0.
  std::vector<Store::Hash> path;  ///< From the leaf to the root.
  Evidence evidence;              ///< Of the state of the store that has the leaf.

  /// The record in a line, then a proof in the form of C2SP (tlog-proof). Signatures of SSH and time stamps, which a
  /// signed note cannot have, are its extra data, each in the text form that ssh-keygen and openssl read.
  /// @throws Error when it has more than `mostOfEach` signatures or time stamps, which no proof can have.
  std::string Text() const;
  /// Whether the path leads from the record to the root of the checkpoint.
  bool HasRecord() const;
};

/// The proofs that a text has, one behind the other.
/// @throws Error, naming the line, when the text is something else.
std::vector<Proof> ProofsIn(std::string_view text, const std::string& file);

}  // namespace Velora::Ts
