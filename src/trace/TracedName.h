#pragma once

#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The entry line and the exit line of an operation. They are made when the library is loaded, so that an operation
/// writes them without an allocation.
struct TracedName {
  explicit TracedName(const std::string& operation)
      : entryLine(">>Quor::Velora::Infra::TsLogging::TsLogging::" + operation),
        exitLine("<<Quor::Velora::Infra::TsLogging::TsLogging::" + operation) {}

  const std::string entryLine;
  const std::string exitLine;
};

/// Shared by the process and its scopes, because a scope can live longer than the constants of the process.
using SharedName = std::shared_ptr<const TracedName>;

}  // namespace Quor::Velora::Infra::TsLogging
