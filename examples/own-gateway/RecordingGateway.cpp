#include "RecordingGateway.h"

#include <sstream>
#include <stdexcept>
#include <utility>
#include <variant>

namespace Types = Quor::TolvaServices::Types;

namespace {

std::string InWords(const Types::InstrumentEvent& event) {
  std::ostringstream words;
  words << std::boolalpha << event.Name;
  for (const auto& parameter : event.Parameters) {
    words << ' ' << parameter->Name << '=';
    std::visit([&words](const auto& typed) { words << typed.Value; }, parameter->ToGsoap());
  }
  return words.str();
}

}  // namespace

RecordingGateway::Versions RecordingGateway::RegisterAndGetActivityVersions(const std::string& /*file*/) {
  Versions versions;
  for (const std::string& name : versionNames) {
    versions[name].Name = name;
  }
  return versions;
}

void RecordingGateway::SaveActivityExecution(Execution& execution) {
  if (execution.Id == Tsid()) {
    execution.Id = Tsid(std::to_string(executions.size() + 1));
    executions[execution.Id.GetGuid()] = {execution.ActivityVersion.Name,
                                          execution.Node,
                                          execution.Description,
                                          execution.Parent == nullptr ? "" : execution.Parent->Id.GetGuid(),
                                          false,
                                          {}};
  }
  Find(execution.Id).isDone = execution.Status.Code == Types::Enums::ActivityExecStatus::Done;
}

RecordingGateway::Execution RecordingGateway::GetActivityExecution(const Tsid& id, bool /*flag*/) {
  const Kept& kept = Find(id);
  Execution execution;
  execution.Id = id;
  execution.Node = kept.node;
  execution.Description = kept.description;
  execution.ActivityVersion.Name = kept.version;
  return execution;
}

void RecordingGateway::SaveEvent(const Event& event, const Tsid& /*configuration*/, const Tsid* execution) {
  if (execution != nullptr) {
    Find(*execution).events.push_back(InWords(event));
  }
}

RecordingGateway::Kept& RecordingGateway::Find(const Tsid& id) {
  const auto found = executions.find(id.GetGuid());
  if (found == executions.end()) {
    throw std::invalid_argument("no execution has the guid '" + id.GetGuid() + "'");
  }
  return found->second;
}
