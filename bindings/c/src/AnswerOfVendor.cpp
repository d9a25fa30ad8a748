#include "AnswerOfVendor.h"

#include <TSAL/Methods.h>

namespace Velora::CInterface {

std::optional<std::string> AnswerOfVendor() {
  using Quor::TolvaServices::Types::TSInstance;
  if (TSInstance::IsTsServicePresent() && TSInstance::IsConnectable()) {
    return std::nullopt;
  }
  return "TS cannot be used; this TSAL does not say why";
}

}  // namespace Velora::CInterface
