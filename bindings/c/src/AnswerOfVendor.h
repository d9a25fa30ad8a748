#pragma once

#include <optional>
#include <string>

namespace Velora::CInterface {

/// Whether a host would record over a vendor's TSAL, of which only the two questions are known: empty if it would.
std::optional<std::string> AnswerOfVendor();

}  // namespace Velora::CInterface
