#pragma once

#include <memory>
#include <string>

// Only the build of the library defines VELORA_INFRA_LOGGING_BUILD.
#if defined(_WIN32) && defined(VELORA_INFRA_LOGGING_BUILD)
#define VELORA_INFRA_LOGGING_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_INFRA_LOGGING_API __declspec(dllimport)
#else
#define VELORA_INFRA_LOGGING_API __attribute__((visibility("default")))
#endif

namespace Quor::Velora::Infra::Logging {

/// The logger of the host application. All operations can be called from several threads at once; lines are not mixed.
class VELORA_INFRA_LOGGING_API Logger {
 public:
  /// The logger of the process. Never null. It can be used as long as somebody holds the pointer.
  static std::shared_ptr<Logger> GetInstance();

  virtual ~Logger();

  /// Writes a line with the level "info". It is written when the operation returns.
  /// @param source the program or library that writes.
  /// @param message the text; any bytes.
  /// @throws std::runtime_error if the line cannot be written; its text names the file or stream.
  virtual void WriteInfo(const std::wstring& source, const std::string& message) = 0;
  /// Writes a line with the level "warning", as WriteInfo does.
  virtual void WriteWarning(const std::wstring& source, const std::string& message) = 0;
  /// Writes a line with the level "error", as WriteInfo does.
  virtual void WriteError(const std::wstring& source, const std::string& message) = 0;

 protected:
  Logger() = default;
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
};

}  // namespace Quor::Velora::Infra::Logging
