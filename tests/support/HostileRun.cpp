// Records runs with everything that is hard to keep into the store of a folder.

#include "support/HostileRun.h"

#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

using namespace Quor::TolvaServices;
using namespace Quor::TolvaServices::Types;

/// A run of two levels with histories of statuses, whose second step did not finish.
void RecordSteps(const std::string& folder) {
  const auto& session = SessionHandle::Empty;
  const auto versions = Methods::ActivityMethods::RegisterAndGetActivityVersions(folder + "/activities.xml", session);
  ActivityExecution run;
  run.Node = "grid \u00B5\u20AC\u00C5 \u96FB";
  run.ActivityVersion = versions.begin()->second;
  Methods::ActivityMethods::SaveActivityExecution(run, session);
  for (const char* const node : {"step 1", "step 2"}) {
    ActivityExecution step;
    step.Node = node;
    step.Parent = &run;
    for (const auto code :
         {Enums::ActivityExecStatus::Running, Enums::ActivityExecStatus::Done, Enums::ActivityExecStatus::Running}) {
      step.Status = {code, DateTimeOffset::Now()};
      Methods::ActivityMethods::SaveActivityExecution(step, session);
    }
    InstrumentEvent event{"Image", {}, {std::make_shared<InstrumentParameterInt>("Dose", 40)}, {}, {}};
    Methods::LoggingMethods::SaveEvent(event, Tsid(), &step.Id, false, session);
  }
  run.Status = {Enums::ActivityExecStatus::Done, DateTimeOffset::Now()};
  Methods::ActivityMethods::SaveActivityExecution(run, session);
}

}  // namespace

int main(int count, char** arguments) try {
  const std::string folder = count == 2 ? arguments[1] : throw std::invalid_argument("expected a folder");
  TSInstance::SetTsalPath(folder);
  TSInstance::BeginSession();
  RecordHostileRun("one");
  RecordSteps(folder);
  RecordHostileRun("two");
} catch (const std::exception& reason) {
  std::cerr << "hostile-run: " << reason.what() << '\n';
  return EXIT_FAILURE;
}
