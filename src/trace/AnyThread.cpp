#include "trace/OneThread.h"

namespace Quor::Velora::Infra::TsLogging {

OneThread::OneThread(const TracedName& /*operation*/) {}
OneThread::~OneThread() {}  // not "= default": the class has a destructor that does something in OneThread.cpp

}  // namespace Quor::Velora::Infra::TsLogging
