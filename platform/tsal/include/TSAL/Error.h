#pragma once

#include <TSAL/Export.h>

#include <stdexcept>
#include <string>

namespace Quor::TolvaServices {

/// What every operation of TSAL raises when it cannot do what it was asked: which thing, what is wrong with it, what
/// was expected. Nothing that was acknowledged before is lost.
class TSAL_API TsError : public std::runtime_error {
 public:
  explicit TsError(const std::string& what);
  TsError(const TsError&) noexcept = default;
  TsError& operator=(const TsError&) noexcept = default;
  ~TsError() override;
};

}  // namespace Quor::TolvaServices
