#include "Records.h"

#include "Text.h"

#include <stdexcept>

namespace Velora::CInterface {

using namespace Quor::TolvaServices::Types;

namespace {

std::int64_t TimeForm(const DateTimeOffset& time) { return time.IsStated() ? time.Microseconds() : VELORA_TS_NO_TIME; }

DateTimeOffset TimeOf(std::int64_t form) {
  return form == VELORA_TS_NO_TIME ? DateTimeOffset() : DateTimeOffset::FromMicroseconds(form);
}

std::string Taken(const char* name, const velora_ts_text& form) { return TextOf(name, form.data, form.size); }

velora_ts_parameter ParameterForm(const InstrumentParameterBase& parameter) {
  velora_ts_parameter form{};
  form.name = FormOf(parameter.Name);
  form.text = {"", 0};
  if (const auto* const truth = dynamic_cast<const InstrumentParameterBoolean*>(&parameter)) {
    form.kind = VELORA_TS_BOOL;
    form.integer = truth->Value ? 1 : 0;
  } else if (const auto* const real = dynamic_cast<const InstrumentParameterDouble*>(&parameter)) {
    form.kind = VELORA_TS_DOUBLE;
    form.real = real->Value;
  } else if (const auto* const integer = dynamic_cast<const InstrumentParameterInt*>(&parameter)) {
    form.kind = VELORA_TS_INT;
    form.integer = integer->Value;
  } else if (const auto* const text = dynamic_cast<const InstrumentParameterString*>(&parameter)) {
    form.kind = VELORA_TS_TEXT;
    form.text = FormOf(text->Value);
  } else {
    throw std::runtime_error("the parameter '" + parameter.Name + "' has a kind that the C interface does not know");
  }
  return form;
}

std::vector<velora_ts_parameter> ParameterForms(const InstrumentEvent& event) {
  std::vector<velora_ts_parameter> forms;
  forms.reserve(event.Parameters.size());
  for (const auto& parameter : event.Parameters) {
    forms.push_back(ParameterForm(*parameter));
  }
  return forms;
}

velora_ts_version_of_activity VersionForm(const ActivityVersion& version, const std::string& guid) {
  return {FormOf(guid), FormOf(version.Name), FormOf(version.Version), FormOf(version.Description)};
}

}  // namespace

velora_ts_text FormOf(const std::string& text) { return {text.c_str(), text.size()}; }

ExecutionForm::ExecutionForm(const ActivityExecution& execution)
    : guid(execution.Id.GetGuid()),
      parent(execution.Parent == nullptr ? "" : execution.Parent->Id.GetGuid()),
      versionGuid(execution.ActivityVersion.Id.GetGuid()),
      form{FormOf(guid),
           FormOf(parent),
           VersionForm(execution.ActivityVersion, versionGuid),
           FormOf(execution.Node),
           FormOf(execution.Description),
           execution.Kind,
           static_cast<std::int32_t>(execution.Status.Code),
           TimeForm(execution.Status.Time)} {}

EventForm::EventForm(const InstrumentEvent& event)
    : parameters(ParameterForms(event)),
      form{FormOf(event.Name), TimeForm(event.TimeStamp), parameters.data(), parameters.size()} {}

ActivityVersion VersionOf(const velora_ts_version_of_activity& form) {
  ActivityVersion version;
  version.Id = Tsid(Taken("the guid of the version", form.guid));
  version.Name = Taken("the name of the version", form.name);
  version.Version = Taken("the version of the version", form.version);
  version.Description = Taken("the description of the version", form.description);
  return version;
}

ActivityExecution ExecutionOf(const velora_ts_execution& form) {
  ActivityExecution execution;
  execution.Id = Tsid(Taken("the guid of the execution", form.guid));
  execution.ActivityVersion = VersionOf(form.version);
  execution.Node = Taken("the node of the execution", form.node);
  execution.Description = Taken("the description of the execution", form.description);
  execution.Kind = form.kind;
  execution.Status = {static_cast<Enums::ActivityExecStatus>(form.status), TimeOf(form.time)};
  return execution;
}

}  // namespace Velora::CInterface
