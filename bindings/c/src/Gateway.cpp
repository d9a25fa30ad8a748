#include "Answer.h"
#include "Callback.h"
#include "HostsGateway.h"
#include "Records.h"

#include <VeloraTsLogging/IFactory.h>

#include <array>
#include <memory>
#include <utility>

using namespace Velora::CInterface;
using namespace Quor::TolvaServices::Types;
using Quor::Velora::Infra::TsLogging::ActivityVersionMap;
using Quor::Velora::Infra::TsLogging::GetFactory;
using Quor::Velora::Infra::TsLogging::ITolvaServicesClass;
using Quor::Velora::Infra::TsLogging::SetFactory;

namespace {

/// A gateway whose operations are callbacks of the host.
class HostGateway final : public ITolvaServicesClass {
 public:
  using Table = velora_ts_gateway;

  explicit HostGateway(const Table& table) : host(table) {
    host.Expect("begin_session", &Table::begin_session);
    host.Expect("set_path", &Table::set_path);
    host.Expect("is_present", &Table::is_present);
    host.Expect("is_connectable", &Table::is_connectable);
    host.Expect("register_activities", &Table::register_activities);
    host.Expect("save_execution", &Table::save_execution);
    host.Expect("get_execution", &Table::get_execution);
    host.Expect("read_file", &Table::read_file);
    host.Expect("save_event", &Table::save_event);
    host.Expect("save_configuration", &Table::save_configuration);
  }

  void BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) override {
    const std::array texts{FormOf(text1), FormOf(text2), FormOf(text3)};
    host.Call("begin_session", &Table::begin_session, texts.data());
  }

  void BeginSession() override {
    const velora_ts_text* const none = nullptr;
    host.Call("begin_session", &Table::begin_session, none);
  }

  void SetTsalPath(const std::string& path) override {
    host.Call("set_path", &Table::set_path, path.c_str(), path.size());
  }

  bool IsTsServicePresent() override { return Asked("is_present", &Table::is_present); }

  bool IsConnectable() override { return Asked("is_connectable", &Table::is_connectable); }

  ActivityVersionMap RegisterAndGetActivityVersions(const std::string& path) override {
    Answer answer("register_activities", Answer::Versions());
    host.Call("register_activities", &Table::register_activities, path.c_str(), path.size(), answer.Handle());
    return answer.Given<Answer::Versions>();
  }

  ActivityVersionMap RegisterAndGetActivityVersions() override {
    return HostGateway::RegisterAndGetActivityVersions(std::string());
  }

  void SaveActivityExecution(ActivityExecution& execution) override {
    const ExecutionForm form(execution);
    Answer answer("save_execution", Answer::Text(), VELORA_TS_GUID_CAPACITY - 1);
    host.Call("save_execution", &Table::save_execution, form.Get(), answer.Handle());
    if (auto guid = answer.Given<Answer::Text>()) {
      execution.Id = Tsid(std::move(*guid));
    }
  }

  ActivityExecution GetActivityExecution(const Tsid& id, bool flag) override {
    const std::string guid = id.GetGuid();
    Answer answer("get_execution", Answer::Execution());
    host.Call("get_execution", &Table::get_execution, guid.c_str(), guid.size(), flag ? 1 : 0, answer.Handle());
    return answer.Given<Answer::Execution>();
  }

  std::string ReadAllTextFromFile(const std::string& path) override {
    Answer answer("read_file", Answer::Text());
    host.Call("read_file", &Table::read_file, path.c_str(), path.size(), answer.Handle());
    return answer.Given<Answer::Text>().value_or("");
  }

  void SaveEvent(const InstrumentEvent& event, const Tsid& configurationId, const Tsid* activityExecutionId) override {
    const EventForm form(event);
    const std::string configuration = configurationId.GetGuid();
    const std::string execution = activityExecutionId == nullptr ? "" : activityExecutionId->GetGuid();
    host.Call("save_event", &Table::save_event, form.Get(), configuration.c_str(), configuration.size(),
              activityExecutionId == nullptr ? nullptr : execution.c_str(), execution.size());
  }

  InstrumentEventConfigResult SaveInstrumentConfigWithResult(const std::string& configurationText,
                                                             const std::string& text2, const std::string& vendorName,
                                                             const std::string& hostName, const std::string& optionText,
                                                             const std::string& instrumentClass,
                                                             const std::string& modelName) override {
    const velora_ts_configuration form{FormOf(configurationText), FormOf(text2),      FormOf(vendorName),
                                       FormOf(hostName),          FormOf(optionText), FormOf(instrumentClass),
                                       FormOf(modelName)};
    Answer answer("save_configuration", Answer::Text());
    host.Call("save_configuration", &Table::save_configuration, &form, answer.Handle());
    InstrumentEventConfigResult result;
    result.ConfigurationId = Tsid(answer.Given<Answer::Text>().value_or(""));
    return result;
  }

  /// Makes it the gateway of the component.
  static void PutInPlace(const std::shared_ptr<HostGateway>& gateway) {
    gateway->host.PutInPlace([&] { SetFactory(GetFactory(), std::shared_ptr<ITolvaServicesClass>(gateway)); });
  }

 private:
  using Question = velora_ts_status (VELORA_TS_CALL* Table::*)(void*, std::int32_t*);

  bool Asked(const char* name, Question question) const {
    std::int32_t answer = 0;
    host.Call(name, question, &answer);
    return answer != 0;
  }

  HostTable<Table> host;
};

}  // namespace

velora_ts_status velora_ts_set_gateway(const velora_ts_gateway* gateway) {
  return Boundary(__func__, [&] {
    const auto host = gateway == nullptr ? nullptr : std::make_shared<HostGateway>(*gateway);
    // First, because the release of the former gateway can put another one in place.
    const auto former = HostsGateway();
    RememberHostsGateway(host);
    try {
      if (host == nullptr) {
        SetFactory(GetFactory(), std::shared_ptr<ITolvaServicesClass>());
      } else {
        HostGateway::PutInPlace(host);
      }
    } catch (...) {
      RememberHostsGateway(former);
      throw;
    }
  });
}
