#include "LocalTs.h"
#include "StoredActivities.h"
#include "StoredConfigurations.h"
#include "StoredEvent.h"
#include "StoredExecutions.h"
#include "store/settings/ActivitiesFile.h"
#include "store/settings/Service.h"
#include "store/settings/WholeFile.h"

#include <TSAL/Error.h>
#include <TSAL/Methods.h>
#include <TSAL/Reason.h>
#include <VeloraSystem/Narrow.h>

namespace Quor::TolvaServices {

using Local::OpenStore;
using Types::SessionHandle;
using Types::Tsid;

namespace {

/// Does something with the store, whose errors are raised as TSAL's own.
template <typename Work>
auto AsTsal(const Work& work) {
  try {
    return work();
  } catch (const Velora::Store::Error& error) {
    throw TsError(error.what());
  }
}

}  // namespace

namespace Types {

bool TSInstance::IsTsServicePresent() {
  const std::string reason = Velora::Store::WhyServiceIsAbsent();
  Local::SetReason(reason);
  return reason.empty();
}

bool TSInstance::IsConnectable() {
  try {
    Local::OpenStoreOfSettings();
    Local::SetReason("");
    return true;
  } catch (const Velora::Store::NotReachable& reason) {
    Local::SetReason(reason.what());
    return false;
  } catch (const Velora::Store::Error& reason) {
    Local::SetReason(reason.what());
    throw TsError(reason.what());
  } catch (const std::exception& reason) {
    Local::SetReason(reason.what());
    throw;
  }
}

void TSInstance::SetTsalPath(const std::string& path) { Local::SetSettingsFolder(Velora::System::FromNarrow(path)); }

SessionHandle TSInstance::BeginSession() { return BeginSession({}, {}, {}); }

SessionHandle TSInstance::BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) {
  return AsTsal([&] { return SessionHandle(Local::BeginSession(text1, text2, text3)); });
}

}  // namespace Types

namespace Methods {

std::map<std::string, Types::ActivityVersion> ActivityMethods::RegisterAndGetActivityVersions(
    const std::string& activitiesFilePath, const SessionHandle& handle) {
  return AsTsal([&] {
    const auto session = Local::SessionOf(handle);
    const std::string path = Velora::System::FromNarrow(activitiesFilePath);
    const auto versions = Velora::Store::ReadActivitiesFile(path);
    return session->Run(
        [&](OpenStore& store) { return Local::RegisterVersions(store, session->Row(), path, versions); });
  });
}

void ActivityMethods::SaveActivityExecution(Types::ActivityExecution& execution, const SessionHandle& handle) {
  execution.Id = AsTsal([&] {
    const auto session = Local::SessionOf(handle);
    return session->Run([&](OpenStore& store) { return Local::StoreExecution(store, session->Row(), execution); });
  });
}

Types::ActivityExecution ActivityMethods::GetActivityExecution(const Tsid& id, bool /*flag*/,
                                                               const Tsid* /*configurationId*/) {
  return AsTsal([&] {
    return Local::SessionOf(SessionHandle::Empty)->Run([&](OpenStore& store) {
      return Local::LoadExecution(store, id);
    });
  });
}

void LoggingMethods::SaveEvent(const Types::InstrumentEvent& event, const Tsid& configurationId,
                               const Tsid* activityExecutionId, bool /*flag*/, const SessionHandle& handle) {
  AsTsal([&] {
    const auto session = Local::SessionOf(handle);
    session->Run([&](OpenStore& store) {
      Velora::Store::Transaction transaction(*store.writer);
      const auto configuration = Local::ConfigurationRow(store, configurationId);
      const auto execution = activityExecutionId == nullptr
                                 ? std::optional<long long>()
                                 : std::optional(Local::ExecutionRow(store, *activityExecutionId));
      Velora::Store::EventRow row = Local::ToStored(event);
      row.session = session->Row();
      row.execution = execution;
      row.configuration = configuration;
      store.writer->Insert(row);
      transaction.Commit();
      return true;
    });
  });
}

Types::InstrumentEventConfigResult SystemMethods::SaveInstrumentConfigWithResult(
    const std::string& configurationText, const std::string& text2, const std::string& vendorName,
    const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
    const std::string& modelName, const std::string& text8, const std::string& text9) {
  const Local::ConfigurationTexts texts{configurationText, text2,     vendorName, hostName, optionText,
                                        instrumentClass,   modelName, text8,      text9};
  return AsTsal([&] {
    const auto session = Local::SessionOf(SessionHandle::Empty);
    return session->Run(
        [&](OpenStore& store) { return Local::StoreConfiguration(store, session->Row(), session->Guid(), texts); });
  });
}

}  // namespace Methods

std::string WhyNotAvailable() { return Local::Reason(); }

std::string Utils::TypeUtils::ReadAllTextFromFile(const std::string& path) {
  return AsTsal([&] { return Velora::Store::ReadWholeFile(Velora::System::FromNarrow(path)); });
}

}  // namespace Quor::TolvaServices
