#include "EventTasks.h"

#include "support/ScratchFolder.h"

#include <VeloraInfraLogging/Logger.h>

#include <chrono>
#include <sstream>
#include <thread>
#include <utility>

namespace TsLogging = Quor::Velora::Infra::TsLogging;
using namespace Quor::TolvaServices::Types;
using Quor::Velora::Infra::Logging::Logger;

namespace {

const std::string good = "Good", angle = "TiltAngle", shot = "Shot", note = "Note", noteText = "after focusing";
constexpr double angleValue = -59.98;
constexpr std::int32_t shotValue = 17;
const std::string operationPrefix = "Quor::Velora::Infra::TsLogging::TsLogging::";

class Idle final : public TsLogging::ITolvaServicesClass {
 public:
  Idle(bool present, int wait) : present(present), wait(wait) {}
  void BeginSession(const std::string&, const std::string&, const std::string&) override {}
  void BeginSession() override {}
  void SetTsalPath(const std::string&) override {}
  bool IsTsServicePresent() override { return present; }
  bool IsConnectable() override { return present; }
  TsLogging::ActivityVersionMap RegisterAndGetActivityVersions(const std::string&) override { return {}; }
  TsLogging::ActivityVersionMap RegisterAndGetActivityVersions() override { return {}; }
  void SaveActivityExecution(ActivityExecution&) override { std::this_thread::sleep_for(wait); }
  ActivityExecution GetActivityExecution(const Tsid&, bool) override { return {}; }
  std::string ReadAllTextFromFile(const std::string&) override { return {}; }
  void SaveEvent(const InstrumentEvent&, const Tsid&, const Tsid*) override {}
  InstrumentEventConfigResult SaveInstrumentConfigWithResult(const std::string&, const std::string&, const std::string&,
                                                             const std::string&, const std::string&, const std::string&,
                                                             const std::string&) override {
    return {};
  }

 private:
  const bool present;
  const std::chrono::microseconds wait;
};

std::shared_ptr<TsLogging::IFactory> FactoryOver(std::shared_ptr<TsLogging::ITolvaServicesClass> gateway) {
  auto factory = TsLogging::GetFactory();
  TsLogging::SetFactory(factory, std::move(gateway));
  return factory;
}

std::shared_ptr<TsLogging::ITsLogging> BroughtUp() {
  static const ScratchFolder folder;
  folder.Write("TSAL.config", "");
  folder.Write("activities.xml", "");
  std::filesystem::current_path(folder.path);
  return TsLogging::IFactory::CreateTsLogging("");
}

class ObviousScope {
 public:
  ObviousScope(std::wstring source, std::string function)
      : logger(Logger::GetInstance()), source(std::move(source)), function(std::move(function)) {
    logger->WriteInfo(this->source, ">>" + this->function);
  }
  ObviousScope(const ObviousScope&) = delete;
  ObviousScope& operator=(const ObviousScope&) = delete;
  ~ObviousScope() { logger->WriteInfo(source, "<<" + function); }

  template <typename... Pieces>
  void Write(const Pieces&... pieces) const {
    std::ostringstream line;
    (line << ... << pieces);
    logger->WriteInfo(source, line.str());
  }

 private:
  std::shared_ptr<Logger> logger;
  std::wstring source;
  std::string function;
};

const std::wstring source = L"Velora.TsLogging";

template <typename Parameter, typename Value>
void AddTheObviousWay(PendingEvents& pending, const std::string& event, const std::string& name, const char* opening,
                      const Value& value) {
  const ObviousScope scope(source, operationPrefix + "AddInstrumentEventParameter");
  scope.Write("Add instrument event parameter. node: ", event, ", parameter: ", name, opening, value, '"');
  pending[event].Parameters.push_back(std::make_shared<Parameter>(name, value));
}

}  // namespace

std::shared_ptr<TsLogging::ITolvaServicesClass> IdleGateway(bool present, int wait) {
  return std::make_shared<Idle>(present, wait);
}

ComponentWay::ComponentWay(bool present) : factory(FactoryOver(IdleGateway(present))), logging(BroughtUp()) {}

void ComponentWay::Create(const std::string& event) { logging->CreateInstrumentEvent(event); }

void ComponentWay::AddFour(const std::string& event) {
  logging->AddInstrumentEventParameter(event, good, true);
  logging->AddInstrumentEventParameter(event, angle, angleValue);
  logging->AddInstrumentEventParameter(event, shot, shotValue);
  logging->AddInstrumentEventParameter(event, note, noteText);
}

void ComponentWay::Save(const std::string& event) { logging->SaveInstrumentEvent(event, {}); }

ObviousWay::ObviousWay() : gateway(IdleGateway()) {}

void ObviousWay::Create(const std::string& event) {
  const ObviousScope scope(source, operationPrefix + "CreateInstrumentEvent");
  scope.Write("Create instrument event with name: ", event);
  InstrumentEvent created;
  created.Name = event;
  pending.erase(event);
  pending.emplace(event, created);
}

void ObviousWay::AddFour(const std::string& event) {
  AddTheObviousWay<InstrumentParameterBoolean>(pending, event, good, ", value(bool): \"", true);
  AddTheObviousWay<InstrumentParameterDouble>(pending, event, angle, ", value(double): \"", angleValue);
  AddTheObviousWay<InstrumentParameterInt>(pending, event, shot, ", value(int): \"", shotValue);
  AddTheObviousWay<InstrumentParameterString>(pending, event, note, ", value(string): \"", noteText);
}

void ObviousWay::Save(const std::string& event) {
  const ObviousScope scope(source, operationPrefix + "SaveInstrumentEvent");
  const std::string execution;
  scope.Write("Save instrument event. node: ", event, ", activityTsidGuid: ", execution);
  const InstrumentEvent saved = pending[event];
  gateway->SaveEvent(saved, Tsid(), nullptr);
}

Floor::Floor() {
  const auto lines = [](const std::string& operation, const std::string& own) {
    return Lines{">>" + operationPrefix + operation, own, "<<" + operationPrefix + operation};
  };
  const std::string add = "AddInstrumentEventParameter";
  operations = {
      lines("CreateInstrumentEvent", "Create instrument event with name: Exposure"),
      lines(add, "Add instrument event parameter. node: Exposure, parameter: Good, value(bool): \"1\""),
      lines(add, "Add instrument event parameter. node: Exposure, parameter: TiltAngle, value(double): \"-59.98\""),
      lines(add, "Add instrument event parameter. node: Exposure, parameter: Shot, value(int): \"17\""),
      lines(add, "Add instrument event parameter. node: Exposure, parameter: Note, value(string): \"" + noteText + '"'),
      lines("SaveInstrumentEvent", "Save instrument event. node: Exposure, activityTsidGuid: ")};
}

void Floor::Write(std::size_t operation) {
  const Lines& lines = operations[operation];
  const std::shared_ptr<Logger> logger = Logger::GetInstance();
  logger->WriteInfo(source, lines.entry);
  logger->WriteInfo(source, lines.own);
  logger->WriteInfo(source, lines.exit);
}

void Floor::WriteTraceLines() const {
  const std::shared_ptr<Logger> logger = Logger::GetInstance();
  logger->WriteInfo(source, operations[0].entry);
  logger->WriteInfo(source, operations[0].exit);
}

void Floor::Create(const std::string& event) {
  Write(0);
  InstrumentEvent created;
  created.Name = event;
  pending.erase(event);
  pending.emplace(event, std::move(created));
}

void Floor::AddFour(const std::string& event) {
  Write(1);
  pending[event].Parameters.push_back(std::make_shared<InstrumentParameterBoolean>(good, true));
  Write(2);
  pending[event].Parameters.push_back(std::make_shared<InstrumentParameterDouble>(angle, angleValue));
  Write(3);
  pending[event].Parameters.push_back(std::make_shared<InstrumentParameterInt>(shot, shotValue));
  Write(4);
  pending[event].Parameters.push_back(std::make_shared<InstrumentParameterString>(note, noteText));
}

void Floor::Save(const std::string& event) {
  Write(5);
  const InstrumentEvent saved = pending[event];
}
