#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"
#include "state/TsLogging.h"
#include "trace/ComposeLine.h"
#include "trace/TraceScope.h"

#include <utility>

namespace Quor::Velora::Infra::TsLogging {

using TolvaServices::Types::ActivityExecution;
using TolvaServices::Types::InstrumentEvent;
using TolvaServices::Types::InstrumentParameterBoolean;
using TolvaServices::Types::InstrumentParameterDouble;
using TolvaServices::Types::InstrumentParameterInt;
using TolvaServices::Types::InstrumentParameterString;
using TolvaServices::Types::Tsid;

namespace {

// The four typed operations differ only in the type of the parameter and in the text before its value.
template <typename Parameter, typename Value>
void AddParameter(const std::string& node, const std::string& parameter, const char* valueOpening, const Value& value) {
  const TraceScope scope(traceSource, Operation::addInstrumentEventParameter);
  if (!TsLogging::IsTsSupported()) {
    return;
  }
  scope.WriteInfo(ComposeLine("Add instrument event parameter. node: ", node, ", parameter: ", parameter, valueOpening,
                              value, "\""));
  auto added = std::make_shared<Parameter>(parameter, value);
  pendingInstrumentEvents[node].Parameters.push_back(std::move(added));
}

}  // namespace

void TsLogging::CreateInstrumentEvent(const std::string& name) {
  const TraceScope scope(traceSource, Operation::createInstrumentEvent);
  if (!IsTsSupported()) {
    return;
  }
  scope.WriteInfo(ComposeLine("Create instrument event with name: ", name));
  InstrumentEvent event;
  event.Name = name;
  pendingInstrumentEvents.erase(name);
  pendingInstrumentEvents.emplace(name, std::move(event));
}

void TsLogging::SaveInstrumentEvent(const std::string& node, const std::string& activityTsidGuid) {
  const TraceScope scope(traceSource, Operation::saveInstrumentEvent);
  if (!IsTsSupported()) {
    return;
  }
  scope.WriteInfo(ComposeLine("Save instrument event. node: ", node, ", activityTsidGuid: ", activityTsidGuid));
  const InstrumentEvent event = pendingInstrumentEvents[node];
  if (activityTsidGuid.empty()) {
    GetTolvaServicesClass()->SaveEvent(event, instrumentConfigResult.ConfigurationId, nullptr);
    return;
  }
  const Tsid asked(activityTsidGuid);
  const ActivityExecution execution = GetTolvaServicesClass()->GetActivityExecution(asked, true);
  // The event belongs to the identity that TS returned, which can differ from the requested one.
  GetTolvaServicesClass()->SaveEvent(event, instrumentConfigResult.ConfigurationId, &execution.Id);
}

void TsLogging::AddInstrumentEventParameter(const std::string& node, const std::string& parameter, bool value) {
  AddParameter<InstrumentParameterBoolean>(node, parameter, ", value(bool): \"", value);
}

void TsLogging::AddInstrumentEventParameter(const std::string& node, const std::string& parameter, double value) {
  AddParameter<InstrumentParameterDouble>(node, parameter, ", value(double): \"", value);
}

void TsLogging::AddInstrumentEventParameter(const std::string& node, const std::string& parameter, std::int32_t value) {
  AddParameter<InstrumentParameterInt>(node, parameter, ", value(int): \"", value);
}

void TsLogging::AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                            const std::string& value) {
  AddParameter<InstrumentParameterString>(node, parameter, ", value(string): \"", value);
}

}  // namespace Quor::Velora::Infra::TsLogging
