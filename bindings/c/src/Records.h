#pragma once

#include <TSAL/Types.h>
#include <velora_ts.h>

#include <string>
#include <vector>

// The records of TS in the form in which they cross the C interface. A form refers to the texts of its record, which
// lives longer. Its texts end with a zero byte.

namespace Velora::CInterface {

/// A text as a member of a structure.
velora_ts_text FormOf(const std::string& text);

/// An execution as callbacks get it.
class ExecutionForm {
 public:
  explicit ExecutionForm(const Quor::TolvaServices::Types::ActivityExecution& execution);
  ExecutionForm(const ExecutionForm&) = delete;
  ExecutionForm& operator=(const ExecutionForm&) = delete;

  const velora_ts_execution* Get() const { return &form; }

 private:
  std::string guid, parent, versionGuid;
  velora_ts_execution form;
};

/// An event as callbacks get it.
class EventForm {
 public:
  explicit EventForm(const Quor::TolvaServices::Types::InstrumentEvent& event);
  EventForm(const EventForm&) = delete;
  EventForm& operator=(const EventForm&) = delete;

  const velora_ts_event* Get() const { return &form; }

 private:
  std::vector<velora_ts_parameter> parameters;
  velora_ts_event form;
};

/// What callbacks answer. @throws Misuse if a text cannot be one.
Quor::TolvaServices::Types::ActivityVersion VersionOf(const velora_ts_version_of_activity& form);
Quor::TolvaServices::Types::ActivityExecution ExecutionOf(const velora_ts_execution& form);

}  // namespace Velora::CInterface
