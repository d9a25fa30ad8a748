#include "store/settings/Service.h"

#include <cstdlib>
#include <string_view>

namespace Velora::Store {

std::string WhyServiceIsAbsent() {
  const char* const service = std::getenv("TSAL_SERVICE");
  return service != nullptr && std::string_view(service) == "absent"
             ? "the environment variable TSAL_SERVICE is 'absent', so TS counts as not installed; unset it"
             : "";
}

}  // namespace Velora::Store
