#include "fakes/Scene.h"

#include <VeloraInfraLogging/Logger.h>

namespace Quor::Velora::Infra::Logging {
namespace {

class FakeLogger final : public Logger {
 public:
  void WriteInfo(const std::wstring& source, const std::string& message) override { Write("info ", source, message); }
  void WriteWarning(const std::wstring& source, const std::string& message) override {
    Write("warning ", source, message);
  }
  void WriteError(const std::wstring& source, const std::string& message) override { Write("error ", source, message); }

 private:
  // The one source that there should be is left out, for the journal to read well.
  static void Write(const char* level, const std::wstring& source, const std::string& message) {
    const Fakes::Aside aside;
    Fakes::Call((source == L"Velora.TsLogging" ? "" : "of another source: ") + std::string(level) + message);
  }
};

}  // namespace

Logger::~Logger() = default;

std::shared_ptr<Logger> Logger::GetInstance() {
  Fakes::UnwrittenCall("Logger GetInstance");
  return std::make_shared<FakeLogger>();
}

}  // namespace Quor::Velora::Infra::Logging
