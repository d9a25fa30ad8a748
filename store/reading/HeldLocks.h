#pragma once

#include <memory>
#include <optional>
#include <string>

namespace Velora::Store {

class Reader;

/// The locks that the hosts of a store hold now.
class HeldLocks {
 public:
  HeldLocks() = default;
  HeldLocks(const HeldLocks&) = delete;
  HeldLocks& operator=(const HeldLocks&) = delete;
  virtual ~HeldLocks() = default;

  /// Whether the host of a session holds its lock; nothing if that is not known.
  virtual std::optional<bool> IsHeld(long long session) const = 0;

  bool canReadPlaces = true;  ///< Whether `session_locks` can be read.
  std::string where;   ///< The beginning of the place of each lock that is looked for here; empty if none can be.
  std::string since;   ///< What follows in the place of a lock that was not lost without its host having ended.
  std::string whyNot;  ///< Why no lock can be looked for.
};

std::unique_ptr<HeldLocks> AskForLocks(const Reader& store);

}  // namespace Velora::Store
