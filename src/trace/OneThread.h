#pragma once

#include "trace/TraceSource.h"
#include "trace/TracedName.h"

namespace Quor::Velora::Infra::TsLogging {

#ifdef VELORA_TS_LOGGING_ONE_THREAD
/// In the build for tests of hosts: ends the process when an operation starts while another thread runs one. The error
/// line names both operations. In the shipped build they would damage the tables of the process without an error.
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
