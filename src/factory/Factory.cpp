#include "state/ProcessState.h"
#include "state/TsLogging.h"

#include <VeloraTsLogging/IFactory.h>

#include <utility>

namespace Quor::Velora::Infra::TsLogging {
namespace {

// Swaps, because an assignment releases the old reference before the new one is in place. The last weak reference
// destroys the deleter of a factory, which may call the component.
void PutInFactorySlot(const std::shared_ptr<IFactory>& factory) { std::weak_ptr<IFactory>(factory).swap(factorySlot); }

}  // namespace

// A factory has no data to assign.
IFactory& IFactory::operator=(const IFactory& other) noexcept = default;
IFactory& IFactory::operator=(IFactory&& other) noexcept = default;

std::shared_ptr<ITsLogging> IFactory::CreateTsLogging(const std::string& instrumentConfigFile,
                                                      const std::string& activitiesFile) {
  TsLogging::CreateTsLoggingSession(instrumentConfigFile, activitiesFile);
  return TsLogging::GetInstance();
}

std::shared_ptr<ITsLogging> IFactory::CreateTsLogging(const std::string& instrumentConfigFile) {
  return CreateTsLogging(instrumentConfigFile, defaultActivitiesFile);
}

std::shared_ptr<IFactory> GetFactory() {
  if (std::shared_ptr<IFactory> alive = factorySlot.lock()) {
    return alive;
  }
  auto factory = std::make_shared<IFactory>();
  PutInFactorySlot(factory);
  return factory;
}

void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITsLogging> logging) {
  TsLogging::SetInstance(std::move(logging));
  PutInFactorySlot(factory);
}

void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITolvaServicesClass> gateway) {
  TsLogging::SetTolvaServicesInstance(std::move(gateway));
  PutInFactorySlot(factory);
}

}  // namespace Quor::Velora::Infra::TsLogging
