#pragma once

#include "trace/TracedName.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

/// What all scopes of the process share.
struct TraceSource {
  explicit TraceSource(std::wstring sourceName) : name(std::move(sourceName)) {}

  const std::wstring name;  // under which every line is written

#ifdef VELORA_TS_LOGGING_ONE_THREAD
  // Who is inside an operation. The thread that comes in takes the first and alone writes the other two.
  std::atomic<std::thread::id> threadInside;
  std::atomic<const TracedName*> operationInside = nullptr;  // the outermost
  int operationsInside = 0;
#endif
};

using SharedSource = std::shared_ptr<TraceSource>;

}  // namespace Quor::Velora::Infra::TsLogging
