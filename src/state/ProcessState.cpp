#include "state/ProcessState.h"

namespace Quor::Velora::Infra::TsLogging {

// The order is important, because the objects of one file are destroyed in reverse order. While the library unloads,
// the destructor of a host's object may call the component. What these calls use is defined before the release of the
// slots.

const SharedSource traceSource = std::make_shared<TraceSource>(L"Velora.TsLogging");
const std::string settingsFileName = "TSAL.config";
const std::string defaultActivitiesFile = "activities.xml";

namespace Operation {
namespace {
SharedName Named(const char* operation) { return std::make_shared<const TracedName>(operation); }
}  // namespace

const SharedName addInstrumentEventParameter = Named("AddInstrumentEventParameter");
const SharedName checkTsServiceAvailability = Named("CheckTsServiceAvailability");
const SharedName createActivityExecution = Named("CreateActivityExecution");
const SharedName createInstrumentEvent = Named("CreateInstrumentEvent");
const SharedName createTsLoggingSession = Named("CreateTsLoggingSession");
const SharedName getDataRootDirectory = Named("GetDataRootDirectory");
const SharedName getInstance = Named("GetInstance");
const SharedName saveInstrumentEvent = Named("SaveInstrumentEvent");
const SharedName setInstance = Named("SetInstance");
const SharedName setParentActivityExec = Named("SetParentActivityExec");
const SharedName setTolvaServicesInstance = Named("SetTolvaServicesInstance");
const SharedName updateActivityExecution = Named("UpdateActivityExecution");
}  // namespace Operation

std::recursive_mutex instanceMutex;
std::recursive_mutex gatewayMutex;
std::atomic<bool> tsSupported = false;
ActivityVersionMap activityVersions;
std::map<std::string, TolvaServices::Types::InstrumentEvent> pendingInstrumentEvents;
std::string parentActivityExecGuid;
TolvaServices::Types::InstrumentEventConfigResult instrumentConfigResult;

namespace {

// A slot that is never destroyed. An object that is put into it after its release stays there, and an operation that is
// still running can use the slot.
template <typename Slot>
union Lasting {
  constexpr Lasting() : slot() {}
  ~Lasting() {}
  Slot slot;
};

Lasting<std::shared_ptr<ITolvaServicesClass>> gateway;
Lasting<std::shared_ptr<ITsLogging>> instance;
Lasting<std::weak_ptr<IFactory>> factory;

}  // namespace

std::shared_ptr<ITolvaServicesClass>& currentGateway = gateway.slot;
std::shared_ptr<ITsLogging>& instanceSlot = instance.slot;
std::weak_ptr<IFactory>& factorySlot = factory.slot;

namespace {

// At unload each slot is released once, in this order. A slot is empty before its object is released, so the destructor
// of the object finds it empty.
struct ReleaseAtUnload {
  ~ReleaseAtUnload() {
    factorySlot.reset();
    instanceSlot.reset();
    currentGateway.reset();
  }
} const releaseAtUnload;

}  // namespace

}  // namespace Quor::Velora::Infra::TsLogging
