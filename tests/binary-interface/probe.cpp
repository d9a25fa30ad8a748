// Makes a compiler lay out the tables of the three interfaces. A constructor is enough; nothing needs to be overridden.

#include <VeloraTsLogging/IFactory.h>
#include <VeloraTsLogging/ITolvaServicesClass.h>
#include <VeloraTsLogging/ITsLogging.h>
#include <VeloraTsLogging/ITsLoggingConfigurator.h>

template <typename Interface>
struct Probe : Interface {
  Probe() {}
};

template struct Probe<Quor::Velora::Infra::TsLogging::ITsLogging>;
template struct Probe<Quor::Velora::Infra::TsLogging::ITolvaServicesClass>;
template struct Probe<Quor::Velora::Unmanaged::ITsLoggingConfigurator>;
