#pragma once

#include "store/record/Merkle.h"

#include <optional>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// The state of the tree of a store after a seal, as a text that can be signed (C2SP tlog-checkpoint): origin, number
/// of leaves and root, each in a line.
struct Checkpoint {
  std::string origin;
  long long size = 0;
  Store::Hash root;

  std::string Text() const;
  bool operator==(const Checkpoint&) const = default;
};

/// The origin of the store of a guid.
std::string OriginOf(const std::string& guid);

/// The checkpoint of a store that a text is; nothing for any other text, also for one with further lines.
std::optional<Checkpoint> CheckpointIn(std::string_view text);

}  // namespace Velora::Ts
