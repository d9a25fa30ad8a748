#pragma once

#include <VeloraTsLogging/IFactory.h>

#include <filesystem>
#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The logging object of the component. It has no data; all state belongs to the process (state/ProcessState.h).
class TsLogging final : public ITsLogging {
 public:
  /// The object in the slot. If the slot is empty, a new object is made and the availability is checked.
  static std::shared_ptr<ITsLogging> GetInstance();
  static void SetInstance(std::shared_ptr<ITsLogging> instance);
  static void SetTolvaServicesInstance(std::shared_ptr<ITolvaServicesClass> gateway);

  /// Checks whether TS can be used. IsTsSupported returns this result until the next check.
  static bool CheckTsServiceAvailability(const std::string& activitiesFile);
  static bool IsTsSupported();

  /// The bring-up of a native host. If TS cannot be used, it ends after the check.
  static void CreateTsLoggingSession(const std::string& instrumentConfigFile, const std::string& activitiesFile);

  /// The folder of the library file, with a separator at its end. Empty when the system does not return it.
  static std::filesystem::path GetDataRootDirectory();

  /// The bring-up of a managed host: starts a session and creates the process-wide parent.
  /// @return the guid of the parent. When TS cannot be used, the guid of the parent set before.
  static std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                           const std::string& sessionArg2, const std::string& sessionArg3,
                                           const std::string& activitiesFile);
  static std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                           const std::string& sessionArg2, const std::string& sessionArg3);

  /// Registers the file in TS and keeps the returned versions as the table of activity versions. An exception leaves
  /// the table unchanged.
  static void RegisterActivitiesFile(const std::string& activitiesFilePath);

  std::string CreateActivityExecution(const std::string& parentActivityGuid, const std::string& regActivityVersionName,
                                      const std::string& node, const std::string& description) override;
  std::string CreateActivityExecution(const std::string& regActivityVersionName, const std::string& node,
                                      const std::string& description) override;
  void UpdateActivityExecution(const std::string& guid) override;

  void CreateInstrumentEvent(const std::string& name) override;
  void SaveInstrumentEvent(const std::string& node, const std::string& activityTsidGuid) override;
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter, bool value) override;
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter, double value) override;
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter, std::int32_t value) override;
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                   const std::string& value) override;

 private:
  /// Does not check the availability, unlike GetInstance.
  static void CreateInstanceIfNone();
};

/// The text of the line that says that TS cannot be used.
inline constexpr const char* tsNotSupported =
    "Kv7 for Velora is not supported because TS Server is not installed or available";

}  // namespace Quor::Velora::Infra::TsLogging
