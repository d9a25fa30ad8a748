#pragma once

#include <optional>
#include <string>

namespace Velora::CInterface {

/// Why a host would not record, found out without a session; empty if it would.
/// @param configuration,activities the names of the host's files.
std::optional<std::string> WhyNotAvailable(const std::string& configuration, const std::string& activities);

}  // namespace Velora::CInterface
