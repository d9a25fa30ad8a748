#include "WhyNotAvailable.h"

#include "ModuleFile.h"

#include <TSAL/Reason.h>
#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraTsLogging/ITsLoggingConfigurator.h>
#include <host-check/HostCheck.h>

#include <stdexcept>

// In a build over our TSAL.

namespace Velora::CInterface {

using namespace HostCheck;

namespace {

/// Whether the TSAL of the process is ours. A vendor's can be in its place: it has its own settings, and not the
/// function WhyNotAvailable of ours.
bool TsalIsOurs() {
  try {
    System::LoadedLibrary(VELORA_TSAL_FILE)
        .Find<decltype(Quor::TolvaServices::WhyNotAvailable)>("_ZN4Quor13TolvaServices15WhyNotAvailableB5cxx11Ev");
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace

std::optional<std::string> WhyNotAvailable(const std::string& configuration, const std::string& activities) {
  if (!TsalIsOurs()) {
    return AnswerOfVendor();
  }
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
