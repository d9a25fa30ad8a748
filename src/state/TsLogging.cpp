#include "state/TsLogging.h"

#include "state/ProcessState.h"

namespace Quor::Velora::Infra::TsLogging {

bool TsLogging::IsTsSupported() { return tsSupported; }

}  // namespace Quor::Velora::Infra::TsLogging
