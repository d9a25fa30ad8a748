#pragma once

#include "trace/TracedName.h"

namespace Quor::Velora::Infra::TsLogging {

#ifdef VELORA_TS_LOGGING_ONE_THREAD
/// In the build for tests of hosts: while an operation runs, one on another thread ends the process with a line that
/// names both, where the tables that they share might only be damaged.
class OneThread {
 public:
  explicit OneThread(const TracedName& operation);
  OneThread(const OneThread&) = delete;
  OneThread& operator=(const OneThread&) = delete;
  ~OneThread();
};
#else
class OneThread {
 public:
  explicit OneThread(const TracedName& /*operation*/) {}
};
#endif

}  // namespace Quor::Velora::Infra::TsLogging
