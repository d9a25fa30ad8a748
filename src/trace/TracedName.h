#pragma once

#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The full name of an operation as its two trace lines have it, ready before the first call: an operation writes them
/// without asking for memory.
struct TracedName {
  explicit TracedName(const std::string& operation)
      : entryLine(">>Quor::Velora::Infra::TsLogging::TsLogging::" + operation),
        exitLine("<<Quor::Velora::Infra::TsLogging::TsLogging::" + operation) {}

  const std::string entryLine;
  const std::string exitLine;
};

/// Shared by the process and its scopes: a scope can outlive the process's constants.
using SharedName = std::shared_ptr<const TracedName>;

}  // namespace Quor::Velora::Infra::TsLogging
