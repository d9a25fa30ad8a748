#pragma once

#include "core/TracedName.h"

#include <VeloraInfraLogging/Logger.h>

#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The one way to the host's logger: writes an operation's entry line when it opens and its exit line when it closes;
/// the operation's own lines go through it in between. Lives on the operation's stack.
///
/// When opening raises, the operation does not run and has no exit line.
class TraceScope {
 public:
  /// @param source,functionName constants of the process; the scope keeps references.
  TraceScope(const std::wstring& source, const TracedName& functionName)
      : logger(Logging::Logger::GetInstance()), source(source), functionName(functionName) {
    logger->WriteInfo(source, functionName.entryLine);
  }
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;
  /// Gives up the exit line when the logger raises on it: nothing may leave a closing scope.
  ~TraceScope() {
    try {
      logger->WriteInfo(source, functionName.exitLine);
    } catch (...) {
      // The operation's own outcome counts more than its exit line.
    }
  }

  void WriteInfo(const std::string& message) const { logger->WriteInfo(source, message); }
  void WriteWarning(const std::string& message) const { logger->WriteWarning(source, message); }
  void WriteError(const std::string& message) const { logger->WriteError(source, message); }

 private:
  // The logger is released last.
  std::shared_ptr<Logging::Logger> logger;
  const std::wstring& source;
  const TracedName& functionName;
};

}  // namespace Quor::Velora::Infra::TsLogging
