#include "instrument/InstrumentConfiguration.h"

#include "gateway/CurrentGateway.h"
#include "state/ProcessState.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace Quor::Velora::Infra::TsLogging {
namespace {

// Empty when the system does not return it, which is not a failure. Windows returns it only after the host has started
// the socket layer.
std::string HostName() {
  constexpr int length = 128;
  std::array<char, length> buffer{};
  [[maybe_unused]] const int ignored = gethostname(buffer.data(), length);
  return {buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0')};
}

std::string ModelName(KivAccess::MicroscopeType type) {
  std::ostringstream text;
  text.exceptions(std::ios_base::badbit);  // otherwise a failing stream truncates the text silently
  text << type;
  return text.str();
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, KivAccess::MicroscopeType type) {
  switch (static_cast<std::int32_t>(type)) {
    case 0:
      return stream << "Kelmor";
    case 1:
      return stream << "Morda";
    case 2:
      return stream << "Varen";
    default:
      return stream << "?";
  }
}

void SaveInstrumentConfiguration(const std::string& configurationText) {
  const std::shared_ptr<KivAccess::IInstrumentAccess> access = KivAccess::GetFactory()->CreateInstrumentAccess();
  std::string modelName;
  std::string optionText;
  const std::string hostName = HostName();
  if (access->IsAvailable()) {
    KivAccess::IInstrumentConfiguration* const configuration = access->GetInstrument()->GetConfiguration();
    const KivAccess::MicroscopeType type = configuration->GetMicroscopeType();
    optionText = configuration->GetOptionText();
    if (optionText.empty()) {
      optionText = "None";
    }
    modelName = ModelName(type);
  }
  instrumentConfigResult = GetTolvaServicesClass()->SaveInstrumentConfigWithResult(
      configurationText, "", "Brantor Scientific", hostName, optionText, "TEM", modelName);
}

}  // namespace Quor::Velora::Infra::TsLogging
