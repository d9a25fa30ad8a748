#include "WhyNotAvailable.h"

#include <TSAL/Methods.h>

// Over a vendor's TSAL, of which only the two questions are known.

namespace Velora::CInterface {

std::optional<std::string> WhyNotAvailable(const std::string& /*configuration*/, const std::string& /*activities*/) {
  using Quor::TolvaServices::Types::TSInstance;
  if (TSInstance::IsTsServicePresent() && TSInstance::IsConnectable()) {
    return std::nullopt;
  }
  return "TS cannot be used; this TSAL does not say why";
}

}  // namespace Velora::CInterface
