#include "WhyNotAvailable.h"

#include "ModuleFile.h"

#include <VeloraTsLogging/ITsLoggingConfigurator.h>
#include <host-check/HostCheck.h>

// Over our TSAL.

namespace Velora::CInterface {

using namespace HostCheck;

std::optional<std::string> WhyNotAvailable(const std::string& configuration, const std::string& activities) {
  HostStart start;
  start.library = ModuleFile(reinterpret_cast<const void*>(&GetTsLogingConfigurator));
  start.isLoaded = true;
  start.activities = activities;
  start.configuration = configuration;
  std::string findings;
  const HostOutcome outcome = CheckHost(start, [&](const HostStep& step) {
    if (step.outcome == HostStep::Outcome::Prevents) {
      findings += (findings.empty() ? "" : "\n") + step.words;
    }
  });
  return outcome.records ? std::nullopt : std::optional(findings);
}

}  // namespace Velora::CInterface
