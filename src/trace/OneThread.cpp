#include "trace/OneThread.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace Quor::Velora::Infra::TsLogging {
namespace {

// The thread that runs an operation. A thread that starts one sets threadInside; only that thread writes the others.
// Nothing destroys them, so operations can use them while the process ends.
std::atomic<std::thread::id> threadInside;
std::atomic<const TracedName*> operationInside = nullptr;  // the outermost one
int operationsInside = 0;

const char* NameOf(const TracedName* operation) {
  return operation == nullptr ? "another operation" : operation->entryLine.c_str() + 2;
}

}  // namespace

OneThread::OneThread(const TracedName& operation) {
  const std::thread::id self = std::this_thread::get_id();
  std::thread::id nobody;
  if (threadInside != self && !threadInside.compare_exchange_strong(nobody, self)) {
    static_cast<void>(std::fprintf(stderr,
                                   "VeloraTsLogging: %s was called while another thread was inside %s; a host runs one "
                                   "operation at a time: docs/hosts.md, Threads\n",
                                   NameOf(&operation), NameOf(operationInside)));
    std::abort();
  }
  if (operationsInside++ == 0) {
    operationInside = &operation;
  }
}

OneThread::~OneThread() {
  if (--operationsInside == 0) {
    operationInside = nullptr;
    threadInside = std::thread::id();
  }
}

}  // namespace Quor::Velora::Infra::TsLogging
