// Calls every slot of the three interfaces by its number, past the classes; and answers the component's own calls with
// a table that is nothing but numbered functions.

#include "component/InternalsTest.h"
#include "factory/TsLoggingConfiguratorImpl.h"
#include "gateway/CurrentGateway.h"
#include "gateway/TolvaServicesClass.h"
#include "support/ScratchFolder.h"

#include <VeloraTsLogging/ITsLoggingConfigurator.h>

#include <functional>
#include <vector>

namespace Quor::Velora::Infra::TsLogging {
namespace {

using namespace TolvaServices::Types;
using Text = const std::string&;

// Where slot n stands: the destructor, slot 0, has two entries here.
constexpr std::size_t EntryOf(std::size_t slot) { return slot + 1; }

/// Calls a slot of an object through its table.
template <typename Result, typename... Arguments>
Result CallSlot(void* object, std::size_t slot, Arguments... arguments) {
  void* const entry = (*static_cast<void***>(object))[EntryOf(slot)];
  return reinterpret_cast<Result (*)(void*, Arguments...)>(entry)(object, arguments...);
}

struct Row {
  std::size_t slot;
  std::function<void(std::size_t)> call;
  std::string written;  // what the journal holds then, among other lines
};

void ExpectEach(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    Journal();
    row.call(row.slot);
    const std::string journal = Journal();
    EXPECT_NE(journal.find(row.written + '\n'), std::string::npos) << "slot " << row.slot << ":\n" << journal;
  }
}

using Slots = InternalsTest;

TEST_F(Slots, OfTheLoggingObjectRunTheirOperations) {
  tsSupported = true;
  TsLogging logging;
  void* const object = static_cast<ITsLogging*>(&logging);
  const std::string p = "p", v = "v", n = "n", d = "d", g = "g";
  ExpectEach({
      {1,
       [&](auto slot) {
         EXPECT_EQ((CallSlot<std::string, Text, Text, Text, Text>(object, slot, p, v, n, d)), "new guid");
       },
       "info Create activity execution.  parentActivityGuid: p, regActivityVersionName: v, node: n, description: d, "
       "new "
       "guid: new guid"},
      {2, [&](auto slot) { EXPECT_EQ((CallSlot<std::string, Text, Text, Text>(object, slot, v, n, d)), "new guid"); },
       "info Create activity execution. regActivityVersionName: v, node: n, description: d, new guid: new guid"},
      {3, [&](auto slot) { CallSlot<void, Text>(object, slot, g); }, "info Update activity execution. guid: g"},
      {4, [&](auto slot) { CallSlot<void, Text>(object, slot, n); }, "info Create instrument event with name: n"},
      {5, [&](auto slot) { CallSlot<void, Text, Text>(object, slot, n, g); },
       "info Save instrument event. node: n, activityTsidGuid: g"},
      {6, [&](auto slot) { CallSlot<void, Text, Text, bool>(object, slot, n, p, true); },
       R"(info Add instrument event parameter. node: n, parameter: p, value(bool): "1")"},
      {7, [&](auto slot) { CallSlot<void, Text, Text, double>(object, slot, n, p, 0.5); },
       R"(info Add instrument event parameter. node: n, parameter: p, value(double): "0.5")"},
      {8, [&](auto slot) { CallSlot<void, Text, Text, std::int32_t>(object, slot, n, p, -5); },
       R"(info Add instrument event parameter. node: n, parameter: p, value(int): "-5")"},
      {9, [&](auto slot) { CallSlot<void, Text, Text, Text>(object, slot, n, p, v); },
       R"(info Add instrument event parameter. node: n, parameter: p, value(string): "v")"},
  });
}

TEST_F(Slots, OfTheDefaultGatewayRunTheirOperations) {
  TolvaServicesClass gateway;
  void* const object = static_cast<ITolvaServicesClass*>(&gateway);
  const std::string a = "a", b = "b", c = "c", d = "d", e = "e", f = "f", g = "g";
  ActivityExecution execution;
  InstrumentEvent event;
  const Tsid id("id"), other("other");
  ExpectEach({
      {1, [&](auto slot) { CallSlot<void, Text, Text, Text>(object, slot, a, b, c); },
       "TSAL BeginSession('a', 'b', 'c')"},
      {2, [&](auto slot) { CallSlot<void>(object, slot); }, "TSAL BeginSession()"},
      {3, [&](auto slot) { CallSlot<void, Text>(object, slot, a); }, "TSAL SetTsalPath('a')"},
      {4, [&](auto slot) { EXPECT_TRUE(CallSlot<bool>(object, slot)); }, "TSAL IsTsServicePresent()"},
      {5, [&](auto slot) { EXPECT_TRUE(CallSlot<bool>(object, slot)); }, "TSAL IsConnectable()"},
      {6, [&](auto slot) { EXPECT_EQ((CallSlot<ActivityVersionMap, Text>(object, slot, a).size()), 2U); },
       Registration("a")},
      {7, [&](auto slot) { EXPECT_EQ((CallSlot<ActivityVersionMap>(object, slot).size()), 2U); }, Registration("")},
      {8, [&](auto slot) { CallSlot<void, ActivityExecution&>(object, slot, execution); },
       "TSAL SaveActivityExecution('' version '' status 0 no time node '' description '' kind 0 parent null, Empty)"},
      {9,
       [&](auto slot) { EXPECT_EQ((CallSlot<ActivityExecution, const Tsid&, bool>(object, slot, id, false).Id), id); },
       "TSAL GetActivityExecution('id', false, null)"},
      {10, [&](auto slot) { EXPECT_EQ((CallSlot<std::string, Text>(object, slot, a)), "text of the file"); },
       "TSAL ReadAllTextFromFile('a')"},
      {11,
       [&](auto slot) {
         CallSlot<void, const InstrumentEvent&, const Tsid&, const Tsid*>(object, slot, event, id, &other);
       },
       "TSAL SaveEvent('' at no time [], 'id', 'other', false, Empty)"},
      {12,
       [&](auto slot) {
         CallSlot<InstrumentEventConfigResult, Text, Text, Text, Text, Text, Text, Text>(object, slot, a, b, c, d, e, f,
                                                                                         g);
       },
       "TSAL SaveInstrumentConfigWithResult('a', 'b', 'c', 'd', 'e', 'f', 'g', '', '')"},
  });
}

TEST_F(Slots, OfTheConfiguratorRunTheirOperations) {
  const ScratchFolder folder;
  const std::string root = folder.path.string() + System::separator;
  for (const char* file : {"TSAL.config", "activities.xml", "own.xml"}) {
    folder.Write(file, "");
  }
  systemCalls.moduleFile = (folder / "lib.so").wstring();
  Unmanaged::TsLoggingConfiguratorImpl configurator;
  void* const object = static_cast<Unmanaged::ITsLoggingConfigurator*>(&configurator);
  const std::string n = "n", a = "a", b = "b", c = "c", own = "own.xml";
  const std::string session = Lines("TSAL BeginSession('a', 'b', 'c')", "session released");
  ExpectEach({
      {1,
       [&](auto slot) {
         EXPECT_EQ((CallSlot<std::string, Text, Text, Text, Text, Text>(object, slot, n, a, b, c, own)), "new guid");
       },
       session + Registration(root + "own.xml")},
      {2,
       [&](auto slot) {
         EXPECT_EQ((CallSlot<std::string, Text, Text, Text, Text>(object, slot, n, a, b, c)), "new guid");
       },
       session + Registration(root + "activities.xml")},
  });
}

// A host's gateway without a class: each entry of its table is a function that knows its number.
std::string called;  // the numbers and first arguments of the calls so far
void Say(int slot, const std::string& argument = "") {
  called += std::to_string(slot) + (argument.empty() ? "" : '(' + argument + ')') + ' ';
}
bool Yes(int slot) { return Say(slot), true; }

void Begin3(void*, Text a, Text, Text) { Say(1, a); }
void Begin(void*) { Say(2); }
void SetPath(void*, Text path) { Say(3, path); }
bool Present(void*) { return Yes(4); }
bool Connectable(void*) { return Yes(5); }
ActivityVersionMap RegisterFile(void*, Text file) { return Say(6, file), ActivityVersionMap(); }
ActivityVersionMap RegisterNone(void*) { return Say(7), ActivityVersionMap(); }
void Save(void*, ActivityExecution& execution) { Say(8, execution.Node), execution.Id = Tsid("saved"); }
ActivityExecution Get(void*, const Tsid& id, bool) { return Say(9, id.GetGuid()), ActivityExecution(); }
std::string Read(void*, Text path) { return Say(10, path), "text"; }
void SaveAnEvent(void*, const InstrumentEvent& event, const Tsid&, const Tsid*) { Say(11, event.Name); }
InstrumentEventConfigResult SaveConfig(void*, Text text, Text, Text, Text, Text, Text, Text) {
  return Say(12, text), InstrumentEventConfigResult();
}

template <typename... Functions>
std::vector<void*> TableOf(Functions... functions) {
  return {nullptr, nullptr, reinterpret_cast<void*>(functions)...};  // the destructor's two entries are never called
}

TEST_F(Slots, OfAHostsGatewayAreThoseThatTheComponentCalls) {
  std::vector<void*> table = TableOf(Begin3, Begin, SetPath, Present, Connectable, RegisterFile, RegisterNone, Save,
                                     Get, Read, SaveAnEvent, SaveConfig);
  void** object = table.data();
  SetTolvaServicesClass({reinterpret_cast<ITolvaServicesClass*>(&object), [](ITolvaServicesClass*) {}});
  const ScratchFolder folder;
  folder.Write("TSAL.config", "");
  folder.Write("activities.xml", "");
  std::filesystem::current_path(folder.path);
  called.clear();
  const auto logging = IFactory::CreateTsLogging("config");
  EXPECT_EQ(called, "4 3 5 3 2 6(activities.xml) 10(config) 12(text) 4 3 5 ");
  called.clear();
  EXPECT_EQ(logging->CreateActivityExecution("parent", "v", "node", "d"), "saved");
  logging->CreateInstrumentEvent("event");
  logging->SaveInstrumentEvent("event", "guid");
  logging->UpdateActivityExecution("updated");
  EXPECT_EQ(called, "4 9(parent) 8(node) 9(guid) 11(event) 9(updated) 8 ");
  called.clear();
  systemCalls.moduleFile = (folder / "lib.so").wstring();
  std::filesystem::current_path("/");
  EXPECT_EQ(TsLogging::SetParentActivityExec("parent node", "a", "b", "c"), "saved");
  const std::string root = folder.path.string() + System::separator;
  EXPECT_EQ(called, "4 3(" + root + ") 5 3(" + root + ") 1(a) 6(" + root + "activities.xml) 8(parent node) ");
  currentGateway.reset();
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
