// A logger that replaces VeloraInfraLogging: the component's lines go where the host's own lines go, here to standard
// output. It has the same library name and header; the loader uses the library that it finds first.

#include <VeloraInfraLogging/Logger.h>

#include <iostream>
#include <mutex>

namespace Quor::Velora::Infra::Logging {
namespace {

class HostLogger final : public Logger {
 public:
  void WriteInfo(const std::wstring& /*source*/, const std::string& message) override { Write("info", message); }
  void WriteWarning(const std::wstring& /*source*/, const std::string& message) override { Write("warning", message); }
  void WriteError(const std::wstring& /*source*/, const std::string& message) override { Write("error", message); }

 private:
  void Write(const char* level, const std::string& message) {
    const std::lock_guard lock(mutex);  // lines come from every thread of the host
    std::cout << level << ": " << message << std::endl;
  }

  std::mutex mutex;
};

}  // namespace

Logger::~Logger() = default;

// Lives as long as the process, because the component writes lines while it is unloaded.
std::shared_ptr<Logger> Logger::GetInstance() {
  static const auto* const logger = new std::shared_ptr<Logger>(std::make_shared<HostLogger>());
  return *logger;
}

}  // namespace Quor::Velora::Infra::Logging
