#include "watching/SeenTime.h"

#include "store/values/StoredTime.h"

namespace Velora::Ts {

std::string SeenTime::Of(const std::string& recorded) {
  if (recorded.empty() || recorded == ahead) {
    return recorded.empty() ? recorded : seen;
  }
  const std::string present = Store::ToStoredTime(Store::Now());
  if (recorded <= present) {
    return recorded;
  }
  ahead = recorded;
  return seen = present;
}

}  // namespace Velora::Ts
