// A host that installs its own logging object in front of the component's: it also shows everything that is recorded.

#include <VeloraTsLogging/IFactory.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace Quor::Velora::Infra::TsLogging;

/// Shows each call, and passes it on.
class ShownLogging final : public ITsLogging {
 public:
  explicit ShownLogging(std::shared_ptr<ITsLogging> behind) : behind(std::move(behind)) {}

  std::string CreateActivityExecution(const std::string& parent, const std::string& version, const std::string& node,
                                      const std::string& description) override {
    std::cout << version << ' ' << node << " begins\n";
    return behind->CreateActivityExecution(parent, version, node, description);
  }
  std::string CreateActivityExecution(const std::string& version, const std::string& node,
                                      const std::string& description) override {
    std::cout << version << ' ' << node << " begins\n";
    return behind->CreateActivityExecution(version, node, description);
  }
  void UpdateActivityExecution(const std::string& guid) override { behind->UpdateActivityExecution(guid); }
  void CreateInstrumentEvent(const std::string& name) override { behind->CreateInstrumentEvent(name); }
  void SaveInstrumentEvent(const std::string& name, const std::string& execution) override {
    std::cout << name << " is recorded\n";
    behind->SaveInstrumentEvent(name, execution);
  }
  void AddInstrumentEventParameter(const std::string& name, const std::string& parameter, bool value) override {
    behind->AddInstrumentEventParameter(name, parameter, value);
  }
  void AddInstrumentEventParameter(const std::string& name, const std::string& parameter, double value) override {
    behind->AddInstrumentEventParameter(name, parameter, value);
  }
  void AddInstrumentEventParameter(const std::string& name, const std::string& parameter, std::int32_t value) override {
    behind->AddInstrumentEventParameter(name, parameter, value);
  }
  void AddInstrumentEventParameter(const std::string& name, const std::string& parameter,
                                   const std::string& value) override {
    behind->AddInstrumentEventParameter(name, parameter, value);
  }

 private:
  const std::shared_ptr<ITsLogging> behind;
};

}  // namespace

int main() try {
  const auto component = IFactory::CreateTsLogging("instrument.xml");
  const auto factory = GetFactory();
  SetFactory(factory, std::make_shared<ShownLogging>(component));

  const auto logging =
      IFactory::CreateTsLogging("instrument.xml");  // every part of the host gets this object from now on
  const std::string run = logging->CreateActivityExecution("Session", "grid 7", "shown and recorded");
  logging->CreateInstrumentEvent("Image");
  logging->AddInstrumentEventParameter("Image", "Defocus", -1.5);
  logging->SaveInstrumentEvent("Image", run);
  logging->UpdateActivityExecution(run);
} catch (const std::exception& reason) {
  std::cerr << "Not everything was recorded: " << reason.what() << '\n';
  return 1;
}
