#pragma once

#include <TSAL/Export.h>

#include <stdexcept>
#include <string>

namespace Quor::TolvaServices {

/// The exception of all operations of TSAL. Its text names the database or file, what is wrong, and what was expected.
/// Nothing that was acknowledged before is lost.
class TSAL_API TsError : public std::runtime_error {
 public:
  explicit TsError(const std::string& what);
  TsError(const TsError&) noexcept = default;
  TsError& operator=(const TsError&) noexcept = default;
  ~TsError() override;
};

}  // namespace Quor::TolvaServices
