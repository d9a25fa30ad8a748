#include "Lines.h"
#include "SpdLogger.h"

#include <VeloraInfraLogging/Redirect.h>

#include <memory>
#include <mutex>

namespace Quor::Velora::Infra::Logging {

Logger::~Logger() = default;

namespace {

class ProcessLogger final : public Logger {
 public:
  void WriteInfo(const std::wstring& source, const std::string& message) override {
    Write(Level::Info, source, message);
  }
  void WriteWarning(const std::wstring& source, const std::string& message) override {
    Write(Level::Warning, source, message);
  }
  void WriteError(const std::wstring& source, const std::string& message) override {
    Write(Level::Error, source, message);
  }

  void Redirect(std::shared_ptr<const LineReceiver> next) {
    const std::lock_guard lock(mutex);
    receiver.swap(next);
    // The parameter destroys the former receiver after the lock is given back: what it holds may write lines.
  }

 private:
  void Write(Level level, const std::wstring& source, const std::string& message) {
    if (const auto shared = Receiver()) {
      (*shared)(level, SourceText(source), message);
    } else {
      standard.Write(level, source, message);
    }
  }

  std::shared_ptr<const LineReceiver> Receiver() {
    const std::lock_guard lock(mutex);
    return receiver;
  }

  SpdLogger standard;
  std::mutex mutex;
  std::shared_ptr<const LineReceiver> receiver;  // guarded by mutex; null for the standard one
};

// Made when the library loads, not at the first line: so it outlives whatever writes lines when the process ends.
const std::shared_ptr<ProcessLogger> processLogger = std::make_shared<ProcessLogger>();

}  // namespace

std::shared_ptr<Logger> Logger::GetInstance() { return processLogger; }

}  // namespace Quor::Velora::Infra::Logging

void VeloraInfraLoggingRedirect(const Quor::Velora::Infra::Logging::LineReceiver& receiver) {
  using namespace Quor::Velora::Infra::Logging;
  processLogger->Redirect(receiver ? std::make_shared<const LineReceiver>(receiver) : nullptr);
}
