#include "Callback.h"

#include <VeloraSystem/LoadedLibrary.h>

#include <memory>

#if __has_include(<VeloraInfraLogging/Redirect.h>)
#include <VeloraInfraLogging/Redirect.h>
#define VELORA_TS_LOGGER_IS_OURS
#endif

using namespace Velora::CInterface;

namespace {

using LoggerTable = HostTable<velora_ts_logger>;

#ifdef VELORA_TS_LOGGER_IS_OURS
using namespace Quor::Velora::Infra::Logging;

// The library that is loaded can be another one than that of the build: so the function is looked for now.
auto* FindRedirect() {
  try {
    return Velora::System::LoadedLibrary(VELORA_LOGGING_FILE)
        .Find<decltype(VeloraInfraLoggingRedirect)>("VeloraInfraLoggingRedirect");
  } catch (const std::runtime_error& reason) {
    throw Failure(VELORA_TS_NOT_SUPPORTED, std::string("the logger is not ours: ") + reason.what());
  }
}

constexpr std::int32_t LevelForm(Level level) {
  return level == Level::Info ? VELORA_TS_INFO : level == Level::Warning ? VELORA_TS_WARNING : VELORA_TS_ERROR;
}

void PutInPlace(const std::shared_ptr<LoggerTable>& host, std::int32_t leastLevel) {
  auto* const redirect = FindRedirect();
  if (host == nullptr) {
    redirect(nullptr);
    return;
  }
  host->PutInPlace([&] {
    redirect([host, leastLevel](Level level, const std::string& source, const std::string& message) {
      if (LevelForm(level) < leastLevel || CallbacksAreOver()) {
        return;  // a line is no reason to let something fail while the process ends
      }
      host->Call("write", &velora_ts_logger::write, LevelForm(level), source.c_str(), source.size(), message.c_str(),
                 message.size());
    });
  });
}
#else
void PutInPlace(const std::shared_ptr<LoggerTable>& /*host*/, std::int32_t /*leastLevel*/) {
  throw Failure(VELORA_TS_NOT_SUPPORTED, "the logger is a vendor's");
}
#endif

}  // namespace

velora_ts_status velora_ts_set_logger(const velora_ts_logger* logger) {
  return Boundary(__func__, [&] {
    std::shared_ptr<LoggerTable> host;
    if (logger != nullptr) {
      host = std::make_shared<LoggerTable>(*logger);
      host->Expect("write", &velora_ts_logger::write);
      if (logger->least_level < VELORA_TS_INFO || logger->least_level > VELORA_TS_ERROR) {
        throw Misuse("least_level is " + std::to_string(logger->least_level) + ", expected one of the levels");
      }
    }
    PutInPlace(host, logger == nullptr ? VELORA_TS_INFO : logger->least_level);
  });
}
