#include "factory/TsLoggingConfiguratorImpl.h"

#include "state/TsLogging.h"

namespace Quor::Velora::Unmanaged {

using Infra::TsLogging::TsLogging;

ITsLoggingConfigurator::ITsLoggingConfigurator() = default;
ITsLoggingConfigurator::~ITsLoggingConfigurator() = default;

std::string TsLoggingConfiguratorImpl::SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                                             const std::string& sessionArg2,
                                                             const std::string& sessionArg3,
                                                             const std::string& activitiesFile) {
  return TsLogging::SetParentActivityExec(node, sessionArg1, sessionArg2, sessionArg3, activitiesFile);
}

std::string TsLoggingConfiguratorImpl::SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                                             const std::string& sessionArg2,
                                                             const std::string& sessionArg3) {
  return TsLogging::SetParentActivityExec(node, sessionArg1, sessionArg2, sessionArg3);
}

std::shared_ptr<ITsLoggingConfigurator> GetTsLoggingConfigurator() {
  return std::make_shared<TsLoggingConfiguratorImpl>();
}

}  // namespace Quor::Velora::Unmanaged

void GetTsLogingConfigurator(std::shared_ptr<Quor::Velora::Unmanaged::ITsLoggingConfigurator>& slot) {
  // A move assignment swaps before it releases: the old object is released with the new one in place.
  slot = Quor::Velora::Unmanaged::GetTsLoggingConfigurator();
}
