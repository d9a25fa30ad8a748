#include "trace/OneThread.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {
namespace {

const char* NameOf(const TracedName* operation) {
  return operation == nullptr ? "another operation" : operation->entryLine.c_str() + 2;
}

}  // namespace

OneThread::OneThread(SharedSource sharedSource, const TracedName& operation) : source(std::move(sharedSource)) {
  const std::thread::id self = std::this_thread::get_id();
  std::thread::id nobody;
  if (source->threadInside != self && !source->threadInside.compare_exchange_strong(nobody, self)) {
    static_cast<void>(std::fprintf(stderr,
                                   "VeloraTsLogging: %s was called while another thread was inside %s; a host runs one "
                                   "operation at a time: docs/hosts.md, Threads\n",
                                   NameOf(&operation), NameOf(source->operationInside)));
    std::abort();
  }
  if (source->operationsInside++ == 0) {
    source->operationInside = &operation;
  }
}

OneThread::~OneThread() {
  if (--source->operationsInside == 0) {
    source->operationInside = nullptr;
    source->threadInside = std::thread::id();
  }
}

}  // namespace Quor::Velora::Infra::TsLogging
