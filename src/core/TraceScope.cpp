#include "core/TraceScope.h"

#include <utility>

namespace Quor::Velora::Infra::TsLogging {

TraceScope::TraceScope(std::wstring source, std::string functionName)
    : logger(Logging::Logger::GetInstance()), source(std::move(source)), functionName(std::move(functionName)) {
  this->functionName.insert(0, ">>");
  logger->WriteInfo(this->source, this->functionName);
  this->functionName.replace(0, 2, "<<");
}

TraceScope::~TraceScope() {
  try {
    logger->WriteInfo(source, functionName);
  } catch (...) {
    // The operation's own outcome counts more than its exit line.
  }
}

}  // namespace Quor::Velora::Infra::TsLogging
