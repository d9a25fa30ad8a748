#include "core/ProcessState.h"

namespace Quor::Velora::Infra::TsLogging {

// The order counts. Objects of one file are destroyed in reverse: what a destructor of a host's object may still use
// when it calls back in while the library unloads stands before the slots that hold such objects.

const std::wstring sourceName = L"Velora.TsLogging";
const std::string settingsFileName = "TSAL.config";
const std::string defaultActivitiesFile = "activities.xml";

namespace Operation {
const TracedName addInstrumentEventParameter("AddInstrumentEventParameter");
const TracedName checkTsServiceAvailability("CheckTsServiceAvailability");
const TracedName createActivityExecution("CreateActivityExecution");
const TracedName createInstrumentEvent("CreateInstrumentEvent");
const TracedName createTsLoggingSession("CreateTsLoggingSession");
const TracedName getDataRootDirectory("GetDataRootDirectory");
const TracedName getInstance("GetInstance");
const TracedName saveInstrumentEvent("SaveInstrumentEvent");
const TracedName setInstance("SetInstance");
const TracedName setParentActivityExec("SetParentActivityExec");
const TracedName setTolvaServicesInstance("SetTolvaServicesInstance");
const TracedName updateActivityExecution("UpdateActivityExecution");
}  // namespace Operation

std::recursive_mutex instanceMutex;
std::recursive_mutex gatewayMutex;
std::atomic<bool> tsSupported = false;
ActivityVersionMap activityVersions;
std::map<std::string, TolvaServices::Types::InstrumentEvent> pendingInstrumentEvents;
std::string parentActivityExecGuid;
TolvaServices::Types::InstrumentEventConfigResult instrumentConfigResult;

std::shared_ptr<ITolvaServicesClass> currentGateway;
std::shared_ptr<ITsLogging> instanceSlot;
std::weak_ptr<IFactory> factorySlot;

namespace {

// At unload the slots are emptied in this order. Emptying a slot comes before the release of what it held, so a
// destructor that looks finds it empty rather than half gone; what it puts in there is released the same way.
struct ReleaseAtUnload {
  ~ReleaseAtUnload() {
    do {
      factorySlot.reset();
      instanceSlot.reset();
      currentGateway.reset();
    } while (instanceSlot || currentGateway);
  }
} const releaseAtUnload;

}  // namespace

}  // namespace Quor::Velora::Infra::TsLogging
