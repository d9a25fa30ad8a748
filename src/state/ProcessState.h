#pragma once

#include "trace/TraceSource.h"
#include "trace/TracedName.h"

#include <TSAL/Types.h>
#include <VeloraTsLogging/IFactory.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

// All state of the component. It belongs to the process. No other file has a mutable object with static storage
// duration, except trace/OneThread.cpp, which no shipped library has. Lock order: instanceMutex before gatewayMutex.

namespace Quor::Velora::Infra::TsLogging {

// Constants.
extern const SharedSource traceSource;           // the source of every line
extern const std::string settingsFileName;       // the file that TSAL reads
extern const std::string defaultActivitiesFile;  // for a caller that names none

// The operations that write trace lines.
namespace Operation {
extern const SharedName addInstrumentEventParameter;
extern const SharedName checkTsServiceAvailability;
extern const SharedName createActivityExecution;
extern const SharedName createInstrumentEvent;
extern const SharedName createTsLoggingSession;
extern const SharedName getDataRootDirectory;
extern const SharedName getInstance;
extern const SharedName saveInstrumentEvent;
extern const SharedName setInstance;
extern const SharedName setParentActivityExec;
extern const SharedName setTolvaServicesInstance;
extern const SharedName updateActivityExecution;
}  // namespace Operation

// Guarded by a lock. Every read and every write of a slot happens while its mutex is held.
extern std::recursive_mutex instanceMutex;
extern std::shared_ptr<ITsLogging>& instanceSlot;  // written by GetInstance, SetInstance and SetParentActivityExec
extern std::recursive_mutex gatewayMutex;
extern std::shared_ptr<ITolvaServicesClass>& currentGateway;  // used by gateway/CurrentGateway.cpp only

// Read by every operation without a lock, written by each availability check as its last step.
extern std::atomic<bool> tsSupported;

// Without a lock, because a host runs one operation at a time.
extern std::weak_ptr<IFactory>& factorySlot;  // used by GetFactory and SetFactory
extern ActivityVersionMap activityVersions;   // written by registration and by look-ups of unknown names
extern std::map<std::string, TolvaServices::Types::InstrumentEvent> pendingInstrumentEvents;  // the event operations
extern std::string parentActivityExecGuid;  // written by the parent execution, read by every creation
extern TolvaServices::Types::InstrumentEventConfigResult instrumentConfigResult;  // written by each configuration save

}  // namespace Quor::Velora::Infra::TsLogging
