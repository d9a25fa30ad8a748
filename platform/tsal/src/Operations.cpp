#include "ActivitiesFile.h"
#include "LocalTs.h"
#include "StoredActivities.h"
#include "StoredConfigurations.h"
#include "StoredExecutions.h"
#include "WholeFile.h"

#include <TSAL/Methods.h>
#include <TSAL/Reason.h>

#include <cstdlib>
#include <string_view>

namespace Quor::TolvaServices {

using Types::SessionHandle;
using Types::Tsid;

namespace Types {

bool TSInstance::IsTsServicePresent() {
  const char* const service = std::getenv("TSAL_SERVICE");
  const bool absent = service != nullptr && std::string_view(service) == "absent";
  Local::SetReason(absent ? "the environment variable TSAL_SERVICE is 'absent', so TS counts as not installed; unset it"
                          : "");
  return !absent;
}

bool TSInstance::IsConnectable() {
  try {
    Local::OpenConnection(Local::CurrentSettings().database);
    Local::SetReason("");
    return true;
  } catch (const Local::NotReachable& reason) {
    Local::SetReason(reason.what());
    return false;
  } catch (const std::exception& reason) {
    Local::SetReason(reason.what());
    throw;
  }
}

void TSInstance::SetTsalPath(const std::string& path) { Local::SetSettingsFolder(path); }

SessionHandle TSInstance::BeginSession() { return BeginSession({}, {}, {}); }

SessionHandle TSInstance::BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) {
  return SessionHandle(Local::BeginSession(text1, text2, text3));
}

}  // namespace Types

namespace Methods {

std::map<std::string, Types::ActivityVersion> ActivityMethods::RegisterAndGetActivityVersions(
    const std::string& activitiesFilePath, const SessionHandle& handle) {
  const auto session = Local::SessionOf(handle);
  const auto versions = Local::ReadActivitiesFile(activitiesFilePath);
  return session->Run([&](Local::Connection& connection) {
    return Local::RegisterVersions(connection, session->Row(), activitiesFilePath, versions);
  });
}

void ActivityMethods::SaveActivityExecution(Types::ActivityExecution& execution, const SessionHandle& handle) {
  const auto session = Local::SessionOf(handle);
  execution.Id = session->Run(
      [&](Local::Connection& connection) { return Local::StoreExecution(connection, session->Row(), execution); });
}

Types::ActivityExecution ActivityMethods::GetActivityExecution(const Tsid& id, bool /*flag*/,
                                                               const Tsid* /*configurationId*/) {
  return Local::SessionOf(SessionHandle::Empty)->Run([&](Local::Connection& connection) {
    return Local::LoadExecution(connection, id);
  });
}

void LoggingMethods::SaveEvent(const Types::InstrumentEvent& event, const Tsid& configurationId,
                               const Tsid* activityExecutionId, bool /*flag*/, const SessionHandle& handle) {
  const auto session = Local::SessionOf(handle);
  session->Run([&](Local::Connection& connection) {
    soci::session& sql = connection.Sql();
    Local::Transaction transaction(connection);
    const auto configuration = Local::ConfigurationRow(sql, configurationId);
    const auto execution = activityExecutionId == nullptr
                               ? std::optional<long long>()
                               : std::optional(Local::ExecutionRow(sql, *activityExecutionId));
    connection.Insert(event, session->Row(), execution, configuration);
    transaction.Commit();
    return true;
  });
}

Types::InstrumentEventConfigResult SystemMethods::SaveInstrumentConfigWithResult(
    const std::string& configurationText, const std::string& text2, const std::string& vendorName,
    const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
    const std::string& modelName, const std::string& text8, const std::string& text9) {
  const Local::ConfigurationTexts texts{configurationText, text2,     vendorName, hostName, optionText,
                                        instrumentClass,   modelName, text8,      text9};
  const auto session = Local::SessionOf(SessionHandle::Empty);
  return session->Run([&](Local::Connection& connection) {
    return Local::StoreConfiguration(connection, session->Row(), session->Guid(), texts);
  });
}

}  // namespace Methods

std::string WhyNotAvailable() { return Local::Reason(); }

std::string Utils::TypeUtils::ReadAllTextFromFile(const std::string& path) { return Local::ReadWholeFile(path); }

}  // namespace Quor::TolvaServices
