#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The default gateway. It forwards to TSAL and adds the constant arguments. It does not pass on a settings path or an
/// activities file that is the same as in the call before.
///
/// Do not call these two operations on several threads at once: their caches have no lock.
class TolvaServicesClass final : public ITolvaServicesClass {
 public:
  void BeginSession(const std::string& sessionArg1, const std::string& sessionArg2,
                    const std::string& sessionArg3) override;
  void BeginSession() override;
  void SetTsalPath(const std::string& path) override;
  bool IsTsServicePresent() override;
  bool IsConnectable() override;
  ActivityVersionMap RegisterAndGetActivityVersions(const std::string& activitiesFilePath) override;
  ActivityVersionMap RegisterAndGetActivityVersions() override;
  void SaveActivityExecution(TolvaServices::Types::ActivityExecution& execution) override;
  TolvaServices::Types::ActivityExecution GetActivityExecution(const TolvaServices::Types::Tsid& id,
                                                               bool flag) override;
  std::string ReadAllTextFromFile(const std::string& path) override;
  void SaveEvent(const TolvaServices::Types::InstrumentEvent& event, const TolvaServices::Types::Tsid& configurationId,
                 const TolvaServices::Types::Tsid* activityExecutionId) override;
  TolvaServices::Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& configurationText, const std::string& text2, const std::string& vendorName,
      const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
      const std::string& modelName) override;

 private:
  ActivityVersionMap activityVersionsCache;
  std::string activityVersionsFile;
  bool activityVersionsCached = false;  // needed because the path of a registration can be empty
  std::string tsalPath;
  bool tsalPathSet = false;
};

}  // namespace Quor::Velora::Infra::TsLogging
