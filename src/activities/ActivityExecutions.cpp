#include "activities/ActivityRegistration.h"
#include "activities/ActivityStatus.h"
#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/ComposeLine.h"
#include "trace/TraceScope.h"

namespace Quor::Velora::Infra::TsLogging {

using TolvaServices::Types::ActivityExecution;
using TolvaServices::Types::Tsid;

namespace {

constexpr const char* serverNotAvailable =
    "Cannot create an activity execution because Tolva Services server is not available";

/// The input and the result of a creation. newGuid stays empty when nothing was created.
struct ActivityExecutionRequest {
  std::string node;
  std::string description;
  std::string parentActivityGuid;
  std::string regActivityVersionName;
  std::string newGuid;
};

ActivityExecution FetchExecution(const std::string& guid, bool flag) {
  const Tsid id(guid);
  return GetTolvaServicesClass()->GetActivityExecution(id, flag);
}

ActivityExecution MakeExecution(const ActivityExecutionRequest& request) {
  ActivityExecution execution;
  execution.ActivityVersion = LookUpActivityVersion(request.regActivityVersionName);
  execution.Status = StatusNow(createdStatus);
  execution.Node = request.node;
  execution.Description = request.description;
  return execution;
}

void SaveNew(ActivityExecution& execution, ActivityExecutionRequest& request) {
  GetTolvaServicesClass()->SaveActivityExecution(execution);
  request.newGuid = execution.Id.GetGuid();
}

void CreateTopLevel(ActivityExecutionRequest& request) {
  ActivityExecution execution = MakeExecution(request);
  execution.Kind = topLevelKind;
  SaveNew(execution, request);
}

ActivityExecutionRequest CreateUnderProcessParent(const std::string& regActivityVersionName, const std::string& node,
                                                  const std::string& description) {
  ActivityExecutionRequest request{node, description, parentActivityExecGuid, regActivityVersionName, {}};
  if (!GetTolvaServicesClass()->IsTsServicePresent()) {
    return request;
  }
  if (request.parentActivityGuid.empty()) {
    CreateTopLevel(request);
    return request;
  }
  const ActivityExecution parent = FetchExecution(request.parentActivityGuid, true);
  ActivityExecution execution = MakeExecution(request);
  if (!parent.Description.empty()) {
    execution.Parent = &parent;
  }
  SaveNew(execution, request);
  return request;
}

ActivityExecutionRequest CreateUnderGivenParent(const std::string& parentActivityGuid,
                                                const std::string& regActivityVersionName, const std::string& node,
                                                const std::string& description) {
  ActivityExecutionRequest request{node, description, parentActivityGuid, regActivityVersionName, {}};
  if (!GetTolvaServicesClass()->IsTsServicePresent() || request.parentActivityGuid.empty()) {
    return request;
  }
  const ActivityExecution parent = FetchExecution(request.parentActivityGuid, true);
  ActivityExecution execution = MakeExecution(request);
  execution.Parent = &parent;
  SaveNew(execution, request);
  return request;
}

}  // namespace

std::string TsLogging::CreateActivityExecution(const std::string& regActivityVersionName, const std::string& node,
                                               const std::string& description) {
  const TraceScope scope(traceSource, Operation::createActivityExecution);
  if (!IsTsSupported()) {
    scope.WriteError(serverNotAvailable);
    return {};
  }
  const ActivityExecutionRequest request = CreateUnderProcessParent(regActivityVersionName, node, description);
  scope.WriteInfo(ComposeLine("Create activity execution. regActivityVersionName: ", regActivityVersionName,
                              ", node: ", node, ", description: ", description, ", new guid: ", request.newGuid));
  return request.newGuid;
}

std::string TsLogging::CreateActivityExecution(const std::string& parentActivityGuid,
                                               const std::string& regActivityVersionName, const std::string& node,
                                               const std::string& description) {
  const TraceScope scope(traceSource, Operation::createActivityExecution);
  if (!IsTsSupported()) {
    scope.WriteError(serverNotAvailable);
    return {};
  }
  const ActivityExecutionRequest request =
      CreateUnderGivenParent(parentActivityGuid, regActivityVersionName, node, description);
  // The line has two blanks after the full stop.
  scope.WriteInfo(ComposeLine("Create activity execution. ", " parentActivityGuid: ", parentActivityGuid,
                              ", regActivityVersionName: ", regActivityVersionName, ", node: ", node,
                              ", description: ", description, ", new guid: ", request.newGuid));
  return request.newGuid;
}

void TsLogging::UpdateActivityExecution(const std::string& guid) {
  const TraceScope scope(traceSource, Operation::updateActivityExecution);
  if (!IsTsSupported()) {
    return;
  }
  scope.WriteInfo(ComposeLine("Update activity execution. guid: ", guid));
  if (guid.empty()) {
    return;
  }
  ActivityExecution execution = FetchExecution(guid, false);
  execution.Status = StatusNow(updatedStatus);
  GetTolvaServicesClass()->SaveActivityExecution(execution);
}

}  // namespace Quor::Velora::Infra::TsLogging
