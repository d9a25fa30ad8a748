#include "AnswerOfVendor.h"
#include "WhyNotAvailable.h"

// In a build over a vendor's TSAL.

namespace Velora::CInterface {

std::optional<std::string> WhyNotAvailable(const std::string& /*configuration*/, const std::string& /*activities*/) {
  return AnswerOfVendor();
}

}  // namespace Velora::CInterface
