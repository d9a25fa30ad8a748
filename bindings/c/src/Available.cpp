#include "Boundary.h"
#include "HostsGateway.h"
#include "Text.h"
#include "WhyNotAvailable.h"

using namespace Velora::CInterface;

namespace {

std::optional<std::string> WhyNotAvailableBy(ITolvaServicesClass& gateway) {
  if (!gateway.IsTsServicePresent()) {
    return "the host's gateway says that the service is not present";
  }
  try {
    if (!gateway.IsConnectable()) {
      return "the host's gateway says that the server cannot be reached";
    }
  } catch (const Failure& failure) {  // the component takes this for a no, and only this
    return failure.words;
  } catch (...) {
    return "an exception of an unknown type";
  }
  return std::nullopt;
}

}  // namespace

velora_ts_status velora_ts_available(const char* configuration, size_t configuration_size, const char* activities,
                                     size_t activities_size) {
  return Boundary(__func__, [&] {
    const std::string instrument = TextOf("configuration", configuration, configuration_size);
    const std::string file =
        activities == nullptr ? "activities.xml" : TextOf("activities", activities, activities_size);
    const auto gateway = HostsGateway();
    if (auto reason = gateway ? WhyNotAvailableBy(*gateway) : WhyNotAvailable(instrument, file)) {
      throw Failure(VELORA_TS_NOT_AVAILABLE, *std::move(reason));
    }
  });
}
