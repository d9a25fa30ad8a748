#include "fakes/Scene.h"

#include <VeloraInfraKivAccess/KivAccess.h>

namespace Quor::Velora::Infra::KivAccess {
namespace {

class FakeInstrument final : public IInstrumentAccess, public IInstrument, public IInstrumentConfiguration {
 public:
  ~FakeInstrument() override { Fakes::Note("KivAccess access released"); }
  bool IsAvailable() override { return Fakes::Call("KivAccess IsAvailable").instrumentAvailable; }
  IInstrument* GetInstrument() override { return Fakes::Call("KivAccess GetInstrument"), this; }
  IInstrumentConfiguration* GetConfiguration() override { return Fakes::Call("KivAccess GetConfiguration"), this; }
  std::string GetOptionText() override { return Fakes::Call("KivAccess GetOptionText").optionText; }
  MicroscopeType GetMicroscopeType() override {
    return MicroscopeType{Fakes::Call("KivAccess GetMicroscopeType").microscopeType};
  }
};

class FakeFactory final : public IFactory {
 public:
  ~FakeFactory() override { Fakes::Note("KivAccess factory released"); }
  std::shared_ptr<IInstrumentAccess> CreateInstrumentAccess() override {
    Fakes::Call("KivAccess CreateInstrumentAccess");
    return std::make_shared<FakeInstrument>();
  }
};

}  // namespace

std::shared_ptr<IFactory> GetFactory() {
  Fakes::Call("KivAccess GetFactory");
  return std::make_shared<FakeFactory>();
}

}  // namespace Quor::Velora::Infra::KivAccess
