#include "trace/OneThread.h"

namespace Quor::Velora::Infra::TsLogging {

OneThread::OneThread(const TracedName& /*operation*/) {}
OneThread::~OneThread() = default;

}  // namespace Quor::Velora::Infra::TsLogging
