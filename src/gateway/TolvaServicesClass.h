#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The default gateway: forwards to TSAL, adds what the component always passes the same way, and spares TSAL the
/// settings path and the activities file that it was handed last.
///
/// Not to be used for the two from several threads at once: what it remembers has no lock.
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
  bool activityVersionsCached = false;  // the flag says whether there is a registration: its path can be empty
  std::string tsalPath;
  bool tsalPathSet = false;
};

}  // namespace Quor::Velora::Infra::TsLogging
