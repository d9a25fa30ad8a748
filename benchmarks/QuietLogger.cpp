#include <VeloraInfraLogging/Logger.h>

namespace Quor::Velora::Infra::Logging {
namespace {

class QuietLogger final : public Logger {
 public:
  void WriteInfo(const std::wstring& /*source*/, const std::string& /*message*/) override {}
  void WriteWarning(const std::wstring& /*source*/, const std::string& /*message*/) override {}
  void WriteError(const std::wstring& /*source*/, const std::string& /*message*/) override {}
};

const std::shared_ptr<Logger> quiet = std::make_shared<QuietLogger>();

}  // namespace

Logger::~Logger() = default;

std::shared_ptr<Logger> Logger::GetInstance() { return quiet; }

}  // namespace Quor::Velora::Infra::Logging
