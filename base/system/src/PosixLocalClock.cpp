#include <VeloraSystem/LocalClock.h>

#include <ctime>

namespace Velora::System {

std::chrono::seconds LocalOffset(std::chrono::sys_seconds moment) {
  const std::time_t whole = moment.time_since_epoch().count();
  std::tm local{};
  return std::chrono::seconds(localtime_r(&whole, &local) == nullptr ? 0 : local.tm_gmtoff);
}

}  // namespace Velora::System
