#pragma once

#include "AnswerOfVendor.h"

#include <optional>
#include <string>

namespace Velora::CInterface {

/// Why a host would not record, found out without a session; empty if it would.
/// @param configuration,activities the names of the host's files.
#ifdef VELORA_TSAL_FILE
std::optional<std::string> WhyNotAvailable(const std::string& configuration, const std::string& activities);
#else  // a build over a vendor's TSAL
inline std::optional<std::string> WhyNotAvailable(const std::string& /*configuration*/,
                                                  const std::string& /*activities*/) {
  return AnswerOfVendor();
}
#endif

}  // namespace Velora::CInterface
