#pragma once

#include <memory>
#include <string>

// VELORA_INFRA_LOGGING_BUILD is defined by the build of the library alone.
#if defined(_WIN32) && defined(VELORA_INFRA_LOGGING_BUILD)
#define VELORA_INFRA_LOGGING_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_INFRA_LOGGING_API __declspec(dllimport)
#else
#define VELORA_INFRA_LOGGING_API __attribute__((visibility("default")))
#endif

namespace Quor::Velora::Infra::Logging {

/// The host application's logger. All operations may be called from several threads at once; a line is written whole.
class VELORA_INFRA_LOGGING_API Logger {
 public:
  /// The logger of the process, never empty. A holder keeps it usable for as long as it holds it.
  static std::shared_ptr<Logger> GetInstance();

  virtual ~Logger();

  /// Write one line each, at the level that the name says. The line is out when the operation returns.
  /// @param source who writes.
  /// @param message the text; any bytes.
  /// @throws std::runtime_error when the line cannot be written, naming where it should have gone.
  virtual void WriteInfo(const std::wstring& source, const std::string& message) = 0;
  virtual void WriteWarning(const std::wstring& source, const std::string& message) = 0;
  virtual void WriteError(const std::wstring& source, const std::string& message) = 0;

 protected:
  Logger() = default;
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
};

}  // namespace Quor::Velora::Infra::Logging
