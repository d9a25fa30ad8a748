#include <VeloraInfraKivAccess/KivAccess.h>

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>

// An instrument that is described by environment variables, for computers without one: it is available when
// VELORA_INSTRUMENT_TYPE holds an integer, its type; VELORA_INSTRUMENT_OPTIONS is its option text.

namespace Quor::Velora::Infra::KivAccess {
namespace {

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::optional<MicroscopeType> TypeFrom(std::string_view text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return MicroscopeType{number};
}

class EnvironmentInstrument final : public IInstrumentAccess, public IInstrument, public IInstrumentConfiguration {
 public:
  bool IsAvailable() override { return type.has_value(); }
  IInstrument* GetInstrument() override { return this; }
  IInstrumentConfiguration* GetConfiguration() override { return this; }
  std::string GetOptionText() override { return options; }
  MicroscopeType GetMicroscopeType() override { return type.value(); }

 private:
  const std::optional<MicroscopeType> type = TypeFrom(Variable("VELORA_INSTRUMENT_TYPE"));
  const std::string options = Variable("VELORA_INSTRUMENT_OPTIONS");
};

class EnvironmentFactory final : public IFactory {
 public:
  std::shared_ptr<IInstrumentAccess> CreateInstrumentAccess() override {
    return std::make_shared<EnvironmentInstrument>();
  }
};

}  // namespace

std::shared_ptr<IFactory> GetFactory() { return std::make_shared<EnvironmentFactory>(); }

}  // namespace Quor::Velora::Infra::KivAccess
