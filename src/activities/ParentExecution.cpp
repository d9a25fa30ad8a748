#include "activities/ParentExecution.h"

#include "activities/ActivityRegistration.h"
#include "activities/ActivityStatus.h"
#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"

#include <utility>

namespace Quor::Velora::Infra::TsLogging {

std::string CreateParentActivityExecution(const std::string& node) {
  TolvaServices::Types::ActivityExecution execution;
  execution.ActivityVersion = LookUpActivityVersion("AutoFunction");
  execution.Status = StatusNow(updatedStatus);  // it represents the context of the host, which is never updated
  execution.Node = node;
  execution.Description = "Set Parent ActivityExec";
  execution.Kind = topLevelKind;
  GetTolvaServicesClass()->SaveActivityExecution(execution);
  std::string guid = execution.Id.GetGuid();
  std::string result = guid;
  parentActivityExecGuid = std::move(guid);  // last, because it cannot fail
  return result;
}

}  // namespace Quor::Velora::Infra::TsLogging
