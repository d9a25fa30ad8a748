#pragma once

#include <VeloraTsLogging/ITsLoggingConfigurator.h>

namespace Quor::Velora::Unmanaged {

/// Forwards all calls to TsLogging.
class TsLoggingConfiguratorImpl final : public ITsLoggingConfigurator {
 public:
  std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                    const std::string& sessionArg2, const std::string& sessionArg3,
                                    const std::string& activitiesFile) override;
  std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                    const std::string& sessionArg2, const std::string& sessionArg3) override;
};

}  // namespace Quor::Velora::Unmanaged
