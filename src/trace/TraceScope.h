#pragma once

#include "trace/OneThread.h"
#include "trace/TraceSource.h"
#include "trace/TracedName.h"

#include <VeloraInfraLogging/Logger.h>

#include <memory>
#include <string>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

/// Writes the lines of one operation to the host's logger: the entry line in the constructor, the exit line in the
/// destructor, and the operation's own lines between them. No other code calls the logger.
///
/// When the constructor raises, the operation does not run and has no exit line.
class TraceScope {
 public:
  /// @param sharedSource,sharedName constants of the process. The scope shares them, because a process that ends during
  ///        an operation destroys its constants first.
  TraceScope(SharedSource sharedSource, SharedName sharedName)
      : oneThread(*sharedName),
        logger(Logging::Logger::GetInstance()),
        source(std::move(sharedSource)),
        functionName(std::move(sharedName)) {
    WriteInfo(functionName->entryLine);
  }
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;
  /// Ignores an exception of the logger, because a destructor must not raise.
  ~TraceScope() {
    try {
      WriteInfo(functionName->exitLine);
    } catch (...) {
      // The result of the operation is more important than its exit line.
    }
  }

  void WriteInfo(const std::string& message) const { logger->WriteInfo(source->name, message); }
  void WriteWarning(const std::string& message) const { logger->WriteWarning(source->name, message); }
  void WriteError(const std::string& message) const { logger->WriteError(source->name, message); }

 private:
  [[no_unique_address]] OneThread oneThread;
  // Declared before the texts, so that it is released after them.
  std::shared_ptr<Logging::Logger> logger;
  SharedSource source;
  SharedName functionName;
};

}  // namespace Quor::Velora::Infra::TsLogging
