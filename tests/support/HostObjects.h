#pragma once

#include "fakes/Scene.h"

#include <TSAL/Methods.h>
#include <VeloraTsLogging/IFactory.h>

#include <functional>
#include <string>
#include <utility>

// Objects that a host puts into the component's slots.

/// Says in the journal when it is released, and does something more there.
class Released {
 public:
  explicit Released(
      std::string name, std::function<void()> action = [] {})
      : name(std::move(name)), action(std::move(action)) {}
  Released(const Released&) = delete;
  Released& operator=(const Released&) = delete;
  ~Released() {
    Fakes::Note(name + " released");
    action();
  }

 private:
  const std::string name;
  const std::function<void()> action;
};

class HostLogging final : public Quor::Velora::Infra::TsLogging::ITsLogging, private Released {
 public:
  using Released::Released;
  std::string CreateActivityExecution(const std::string&, const std::string&, const std::string&,
                                      const std::string&) override {
    return {};
  }
  std::string CreateActivityExecution(const std::string&, const std::string&, const std::string&) override {
    return {};
  }
  void UpdateActivityExecution(const std::string&) override {}
  void CreateInstrumentEvent(const std::string&) override {}
  void SaveInstrumentEvent(const std::string&, const std::string&) override {}
  void AddInstrumentEventParameter(const std::string&, const std::string&, bool) override {}
  void AddInstrumentEventParameter(const std::string&, const std::string&, double) override {}
  void AddInstrumentEventParameter(const std::string&, const std::string&, std::int32_t) override {}
  void AddInstrumentEventParameter(const std::string&, const std::string&, const std::string&) override {}
};

/// A gateway without a memory: says that it was called, and asks TSAL.
class HostGateway final : public Quor::Velora::Infra::TsLogging::ITolvaServicesClass, private Released {
  using Tsid = Quor::TolvaServices::Types::Tsid;
  using Execution = Quor::TolvaServices::Types::ActivityExecution;
  using Event = Quor::TolvaServices::Types::InstrumentEvent;
  using Session = Quor::TolvaServices::Types::SessionHandle;
  using Versions = Quor::Velora::Infra::TsLogging::ActivityVersionMap;
  using Instance = Quor::TolvaServices::Types::TSInstance;
  using Activities = Quor::TolvaServices::Methods::ActivityMethods;
  using Events = Quor::TolvaServices::Methods::LoggingMethods;
  using System = Quor::TolvaServices::Methods::SystemMethods;

  static void Say() { Fakes::Note("the host's gateway:"); }

 public:
  using Released::Released;
  void BeginSession(const std::string& a, const std::string& b, const std::string& c) override {
    Say(), Instance::BeginSession(a, b, c);
  }
  void BeginSession() override { Say(), Instance::BeginSession(); }
  void SetTsalPath(const std::string& path) override { Say(), Instance::SetTsalPath(path); }
  bool IsTsServicePresent() override { return Say(), Instance::IsTsServicePresent(); }
  bool IsConnectable() override { return Say(), Instance::IsConnectable(); }
  Versions RegisterAndGetActivityVersions(const std::string& file) override {
    return Say(), Activities::RegisterAndGetActivityVersions(file, Session::Empty);
  }
  Versions RegisterAndGetActivityVersions() override { return RegisterAndGetActivityVersions({}); }
  void SaveActivityExecution(Execution& execution) override {
    Say(), Activities::SaveActivityExecution(execution, Session::Empty);
  }
  Execution GetActivityExecution(const Tsid& id, bool flag) override {
    return Say(), Activities::GetActivityExecution(id, flag, nullptr);
  }
  std::string ReadAllTextFromFile(const std::string& path) override {
    return Say(), Quor::TolvaServices::Utils::TypeUtils::ReadAllTextFromFile(path);
  }
  void SaveEvent(const Event& event, const Tsid& configuration, const Tsid* execution) override {
    Say(), Events::SaveEvent(event, configuration, execution, false, Session::Empty);
  }
  Quor::TolvaServices::Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& a, const std::string& b, const std::string& c, const std::string& d, const std::string& e,
      const std::string& f, const std::string& g) override {
    return Say(), System::SaveInstrumentConfigWithResult(a, b, c, d, e, f, g, {}, {});
  }
};
