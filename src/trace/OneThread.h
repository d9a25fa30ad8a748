#pragma once

#include "trace/TraceSource.h"
#include "trace/TracedName.h"

namespace Quor::Velora::Infra::TsLogging {

#ifdef VELORA_TS_LOGGING_ONE_THREAD
/// In the build for tests of hosts: while an operation runs, an operation on another thread ends the process with a
/// line that names both. In the shipped build it would damage the tables that both use, mostly without a sign of it.
class OneThread {
 public:
  OneThread(SharedSource sharedSource, const TracedName& operation);
  OneThread(const OneThread&) = delete;
  OneThread& operator=(const OneThread&) = delete;
  ~OneThread();

 private:
  SharedSource source;
};
#else
class OneThread {
 public:
  OneThread(const SharedSource& /*sharedSource*/, const TracedName& /*operation*/) {}
};
#endif

}  // namespace Quor::Velora::Infra::TsLogging
