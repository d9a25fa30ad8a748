#pragma once

#include "trace/TracedName.h"

namespace Quor::Velora::Infra::TsLogging {

/// Lives as long as an operation runs. In the library for tests of hosts (OneThread.cpp), it ends the process when an
/// operation starts while another thread runs one. The error line names both operations. In the shipped library
/// (AnyThread.cpp) it does nothing: they would damage the tables of the process without an error.
class OneThread {
 public:
  explicit OneThread(const TracedName& operation);
  OneThread(const OneThread&) = delete;
  OneThread& operator=(const OneThread&) = delete;
  ~OneThread();
};

}  // namespace Quor::Velora::Infra::TsLogging
