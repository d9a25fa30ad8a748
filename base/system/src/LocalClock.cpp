#include <VeloraSystem/LocalClock.h>

namespace Velora::System {

using namespace std::chrono;

seconds OffsetOfClockTime(sys_seconds shown) {
  const seconds before = LocalOffset(shown - days(1));
  const seconds after = LocalOffset(shown + days(1));
  return LocalOffset(shown - before) != before && LocalOffset(shown - after) == after ? after : before;
}

}  // namespace Velora::System
