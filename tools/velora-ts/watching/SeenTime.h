#pragma once

#include <string>

namespace Velora::Ts {

/// When something last recorded was recorded, by the clock of this computer. The clock of a host can be ahead; a time
/// that has not come yet is taken for the one at which it was first seen, also when it has come.
class SeenTime {
 public:
  /// @param recorded as stored.
  /// @return the time to show, as stored.
  std::string Of(const std::string& recorded);

 private:
  std::string ahead, seen;  // the last time that had not come, and when that was seen
};

}  // namespace Velora::Ts
