#pragma once

#include "trace/TracedName.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

/// The data that all scopes of the process share.
struct TraceSource {
  explicit TraceSource(std::wstring sourceName) : name(std::move(sourceName)) {}

  const std::wstring name;  // the source of every line

#ifdef VELORA_TS_LOGGING_ONE_THREAD
  // The thread that runs an operation. A thread that starts one sets threadInside; only that thread writes the others.
  std::atomic<std::thread::id> threadInside;
  std::atomic<const TracedName*> operationInside = nullptr;  // the outermost one
  int operationsInside = 0;
#endif
};

using SharedSource = std::shared_ptr<TraceSource>;

}  // namespace Quor::Velora::Infra::TsLogging
