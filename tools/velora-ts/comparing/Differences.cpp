#include "comparing/Differences.h"

namespace Velora::Ts {

using namespace Store;

bool Differences::AreNone(const Summary& summary) const {
  bool changed = false;
  ForEachChangedLine([&](const ChangedLine& /*unused*/) { changed = true; });
  return !changed && summary.IsEmpty(durationsCount);
}

}  // namespace Velora::Ts
