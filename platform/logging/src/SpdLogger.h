#pragma once

#include <VeloraInfraLogging/Redirect.h>

#include <spdlog/logger.h>

#include <memory>
#include <mutex>
#include <string>

namespace Quor::Velora::Infra::Logging {

/// Writes to the file that VELORA_LOG_FILE names when the first line comes, else to standard error.
class SpdLogger {
 public:
  void Write(Level level, const std::wstring& source, const std::string& message);

 private:
  spdlog::logger& Opened();

  std::mutex mutex;
  std::unique_ptr<spdlog::logger> logger;  // guarded by mutex until it is there
};

}  // namespace Quor::Velora::Infra::Logging
