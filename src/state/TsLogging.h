#pragma once

#include <VeloraTsLogging/IFactory.h>

#include <filesystem>
#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The component's logging object. It has no data: all state is the process's (state/ProcessState.h).
class TsLogging final : public ITsLogging {
 public:
  /// The object in the slot; when the slot is empty, a new one, checked before it is handed out.
  static std::shared_ptr<ITsLogging> GetInstance();
  static void SetInstance(std::shared_ptr<ITsLogging> instance);
  static void SetTolvaServicesInstance(std::shared_ptr<ITolvaServicesClass> gateway);

  /// Whether TS can be used, which every operation is told by IsTsSupported until the next check.
  static bool CheckTsServiceAvailability(const std::string& activitiesFile);
  static bool IsTsSupported();

  /// The bring-up. Does nothing but the check when TS cannot be used.
  static void CreateTsLoggingSession(const std::string& instrumentConfigFile, const std::string& activitiesFile);

  /// The folder of the library's own file with a separator at its end; empty when it cannot be told.
  static std::filesystem::path GetDataRootDirectory();

  /// Brings TS up by itself and creates the execution under which later ones without a parent hang.
  /// @return its guid; the one of the parent set before when TS cannot be used.
  static std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                           const std::string& sessionArg2, const std::string& sessionArg3,
                                           const std::string& activitiesFile);
  static std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                           const std::string& sessionArg2, const std::string& sessionArg3);

  /// Makes the versions that TS knows from this file the table of activity versions; a raise leaves the table as it
  /// was.
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
  /// Without the check that GetInstance makes.
  static void CreateInstanceIfNone();
};

/// The line for a TS that cannot be used.
inline constexpr const char* tsNotSupported =
    "Kv7 for Velora is not supported because TS Server is not installed or available";

}  // namespace Quor::Velora::Infra::TsLogging
