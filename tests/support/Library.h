#pragma once

#include "support/System.h"

#include <VeloraTsLogging/IFactory.h>
#include <VeloraTsLogging/ITsLoggingConfigurator.h>

#include <memory>
#include <string>

/// The component as it is shipped: its library, loaded from a file and used through its exports.
class Library {
 public:
  using IFactory = Quor::Velora::Infra::TsLogging::IFactory;
  using ITsLogging = Quor::Velora::Infra::TsLogging::ITsLogging;
  using ITsLoggingConfigurator = Quor::Velora::Unmanaged::ITsLoggingConfigurator;
  using ITolvaServicesClass = Quor::Velora::Infra::TsLogging::ITolvaServicesClass;

  /// @param file what the loader takes: with a slash in it.
  explicit Library(const std::filesystem::path& file) : handle(System::Load(file)) {
    Find(GetFactory, "_ZN4Quor6Velora5Infra9TsLogging10GetFactoryEv");
    Find(SetLogging,
         "_ZN4Quor6Velora5Infra9TsLogging10SetFactoryESt10shared_ptrINS2_8IFactoryEES3_INS2_10ITsLoggingEE");
    Find(SetGateway,
         "_ZN4Quor6Velora5Infra9TsLogging10SetFactoryESt10shared_ptrINS2_8IFactoryEES3_INS2_19ITolvaServicesClassEE");
    Find(CreateWith,
         "_ZN4Quor6Velora5Infra9TsLogging8IFactory15CreateTsLoggingERKNSt7__cxx1112basic_stringIcSt11char_traitsIcE"
         "SaIcEEESB_");
    Find(Create,
         "_ZN4Quor6Velora5Infra9TsLogging8IFactory15CreateTsLoggingERKNSt7__cxx1112basic_stringIcSt11char_traitsIcE"
         "SaIcEEE");
    Find(GetConfigurator, "GetTsLogingConfigurator");
    Find(NewConfigurator, "_ZN4Quor6Velora9Unmanaged24GetTsLoggingConfiguratorEv");
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { System::Unload(handle); }

  std::shared_ptr<IFactory> (*GetFactory)() = nullptr;
  void (*SetLogging)(std::shared_ptr<IFactory>, std::shared_ptr<ITsLogging>) = nullptr;
  void (*SetGateway)(std::shared_ptr<IFactory>, std::shared_ptr<ITolvaServicesClass>) = nullptr;
  std::shared_ptr<ITsLogging> (*CreateWith)(const std::string&, const std::string&) = nullptr;
  std::shared_ptr<ITsLogging> (*Create)(const std::string&) = nullptr;
  void (*GetConfigurator)(std::shared_ptr<ITsLoggingConfigurator>&) = nullptr;
  std::shared_ptr<ITsLoggingConfigurator> (*NewConfigurator)() = nullptr;

 private:
  template <typename Function>
  void Find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(System::Find(handle, name));
  }

  void* const handle;
};
