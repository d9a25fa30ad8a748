#pragma once

#include <VeloraInfraLogging/Logger.h>

#include <memory>
#include <sstream>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The one way to the host's logger: writes an operation's entry line when it opens and its exit line when it closes;
/// the operation's own lines go through it in between. Lives on the operation's stack.
///
/// When opening raises, the operation does not run and has no exit line.
class TraceScope {
 public:
  TraceScope(std::wstring source, std::string functionName);
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;
  /// Gives up the exit line when the logger raises on it: nothing may leave a closing scope.
  ~TraceScope();

  void WriteInfo(const std::string& message) const { logger->WriteInfo(source, message); }
  void WriteWarning(const std::string& message) const { logger->WriteWarning(source, message); }
  void WriteError(const std::string& message) const { logger->WriteError(source, message); }

 private:
  // Released last to first.
  std::shared_ptr<Logging::Logger> logger;
  std::wstring source;
  std::string functionName;  // behind the mark of its line, so that closing needs no memory
};

/// One line out of fixed pieces and values, as a narrow stream writes them at this moment.
template <typename... Pieces>
std::string ComposeLine(const Pieces&... pieces) {
  std::ostringstream line;
  line.exceptions(std::ios_base::badbit);  // a stream would keep a failure to itself and cut the line short
  (line << ... << pieces);
  return line.str();
}

}  // namespace Quor::Velora::Infra::TsLogging
