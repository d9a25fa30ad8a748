#include "Answer.h"
#include "Callback.h"
#include "Records.h"

#include <VeloraTsLogging/IFactory.h>

#include <memory>

using namespace Velora::CInterface;
using Quor::Velora::Infra::TsLogging::GetFactory;
using Quor::Velora::Infra::TsLogging::ITsLogging;
using Quor::Velora::Infra::TsLogging::SetFactory;

namespace {

/// A logging object whose operations are callbacks of the host.
class OwnLogging final : public ITsLogging {
 public:
  using Table = velora_ts_own_logging;

  explicit OwnLogging(const Table& table) : host(table) {
    host.Expect("create_execution", &Table::create_execution);
    host.Expect("update_execution", &Table::update_execution);
    host.Expect("create_event", &Table::create_event);
    host.Expect("save_event", &Table::save_event);
    host.Expect("add_parameter", &Table::add_parameter);
  }

  std::string CreateActivityExecution(const std::string& parent, const std::string& version, const std::string& node,
                                      const std::string& description) override {
    return Created(FormOf(parent), version, node, description);
  }

  std::string CreateActivityExecution(const std::string& version, const std::string& node,
                                      const std::string& description) override {
    return Created({nullptr, 0}, version, node, description);
  }

  void UpdateActivityExecution(const std::string& guid) override {
    host.Call("update_execution", &Table::update_execution, guid.c_str(), guid.size());
  }

  void CreateInstrumentEvent(const std::string& name) override {
    host.Call("create_event", &Table::create_event, name.c_str(), name.size());
  }

  void SaveInstrumentEvent(const std::string& name, const std::string& guid) override {
    host.Call("save_event", &Table::save_event, name.c_str(), name.size(), guid.c_str(), guid.size());
  }

  void AddInstrumentEventParameter(const std::string& event, const std::string& parameter, bool value) override {
    velora_ts_parameter form = Named(parameter, VELORA_TS_BOOL);
    form.integer = value ? 1 : 0;
    Add(event, form);
  }

  void AddInstrumentEventParameter(const std::string& event, const std::string& parameter, double value) override {
    velora_ts_parameter form = Named(parameter, VELORA_TS_DOUBLE);
    form.real = value;
    Add(event, form);
  }

  void AddInstrumentEventParameter(const std::string& event, const std::string& parameter,
                                   std::int32_t value) override {
    velora_ts_parameter form = Named(parameter, VELORA_TS_INT);
    form.integer = value;
    Add(event, form);
  }

  void AddInstrumentEventParameter(const std::string& event, const std::string& parameter,
                                   const std::string& value) override {
    velora_ts_parameter form = Named(parameter, VELORA_TS_TEXT);
    form.text = FormOf(value);
    Add(event, form);
  }

  /// Makes it the logging object of the process.
  static void PutInPlace(const std::shared_ptr<OwnLogging>& logging) {
    logging->host.PutInPlace([&] { SetFactory(GetFactory(), std::shared_ptr<ITsLogging>(logging)); });
  }

 private:
  static velora_ts_parameter Named(const std::string& name, std::int32_t kind) {
    return {FormOf(name), {"", 0}, 0, kind, 0};
  }

  std::string Created(const velora_ts_text& parent, const std::string& version, const std::string& node,
                      const std::string& description) const {
    Answer answer("create_execution", Answer::Text());
    host.Call("create_execution", &Table::create_execution, parent.data, parent.size, version.c_str(), version.size(),
              node.c_str(), node.size(), description.c_str(), description.size(), answer.Handle());
    return answer.Given<Answer::Text>().value_or("");
  }

  void Add(const std::string& event, const velora_ts_parameter& parameter) const {
    host.Call("add_parameter", &Table::add_parameter, event.c_str(), event.size(), &parameter);
  }

  HostTable<Table> host;
};

}  // namespace

velora_ts_status velora_ts_set_logging(const velora_ts_own_logging* logging) {
  return Boundary(__func__, [&] {
    if (logging == nullptr) {
      SetFactory(GetFactory(), std::shared_ptr<ITsLogging>());
    } else {
      OwnLogging::PutInPlace(std::make_shared<OwnLogging>(*logging));
    }
  });
}
