#pragma once

#include "trace/OneThread.h"
#include "trace/TraceSource.h"
#include "trace/TracedName.h"

#include <VeloraInfraLogging/Logger.h>

#include <memory>
#include <string>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

/// The one way to the host's logger: writes an operation's entry line when it opens and its exit line when it closes;
/// the operation's own lines go through it in between. Lives on the operation's stack.
///
/// When opening raises, the operation does not run and has no exit line.
class TraceScope {
 public:
  /// @param sharedSource,sharedName constants of the process, and the scope's own until it closes: a process that ends
  ///        during an operation gives up its constants first.
  TraceScope(SharedSource sharedSource, SharedName sharedName)
      : oneThread(sharedSource, *sharedName),
        logger(Logging::Logger::GetInstance()),
        source(std::move(sharedSource)),
        functionName(std::move(sharedName)) {
    WriteInfo(functionName->entryLine);
  }
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;
  /// Gives up the exit line when the logger raises on it: nothing may leave a closing scope.
  ~TraceScope() {
    try {
      WriteInfo(functionName->exitLine);
    } catch (...) {
      // The operation's own outcome counts more than its exit line.
    }
  }

  void WriteInfo(const std::string& message) const { logger->WriteInfo(source->name, message); }
  void WriteWarning(const std::string& message) const { logger->WriteWarning(source->name, message); }
  void WriteError(const std::string& message) const { logger->WriteError(source->name, message); }

 private:
  [[no_unique_address]] OneThread oneThread;
  // The logger is released last of what the scope holds.
  std::shared_ptr<Logging::Logger> logger;
  SharedSource source;
  SharedName functionName;
};

}  // namespace Quor::Velora::Infra::TsLogging
