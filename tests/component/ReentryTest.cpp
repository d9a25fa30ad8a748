// Objects of a host that call back into the component from wherever it calls or releases them.

#include "support/ComponentTest.h"
#include "support/Patterns.h"

namespace {

class Reentry : public ComponentTest {
 protected:
  Reentry() { Arrange(); }

  /// The same state before every action. The gateway is one without a memory.
  void Arrange() {
    library->SetLogging(nullptr, logging);
    library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway"));
    SetParent();
    Journal();
  }

  void SetParent() { library->NewConfigurator()->SetParentActivityExec("n", "a", "b", "c"); }

  /// What an action writes, without the gateways that it releases.
  static std::string Written(const std::function<void()>& act) {
    act();
    Fakes::TheScene().hook = nullptr;
    return ReplaceMatches(Journal(), "gateway released\n", "");
  }

  struct Action {
    const char* name;
    std::function<void()> act;
  };
  const std::shared_ptr<Library::ITsLogging> logging = BroughtUp();
  const std::vector<Action> actions = {
      {"CreateTsLogging", [this] { library->Create("i"); }},
      {"SetParentActivityExec", [this] { SetParent(); }},
      {"CreateActivityExecution, parent",
       [this] { static_cast<void>(logging->CreateActivityExecution("p", "v", "n", "d")); }},
      {"CreateActivityExecution", [this] { static_cast<void>(logging->CreateActivityExecution("v", "n", "d")); }},
      {"UpdateActivityExecution", [this] { logging->UpdateActivityExecution("g"); }},
      {"SaveInstrumentEvent", [this] { logging->SaveInstrumentEvent("A", "g"); }},
      {"SetFactory, logging", [this] { library->SetLogging(nullptr, logging); }},
      {"SetFactory, gateway", [this] { library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway")); }},
  };
};

TEST_F(Reentry, FromAnyCallRunsAsAWholeAndTheCallThenGoesOn) {
  std::size_t calls = 0;
  for (const Action& outer : actions) {
    const std::string outerLines = Written(outer.act);
    for (const Action& inner : actions) {
      const std::string innerLines = Written(inner.act);
      bool reached = true;
      for (int at = 0; reached; ++at) {
        Arrange();
        int left = at;
        std::string before;
        Fakes::TheScene().hook = [&](const std::string& entry) {
          if ((StartsWith(entry, "TSAL") || StartsWith(entry, "KivAccess")) && left-- == 0) {
            before = Fakes::TheScene().journal;
            Fakes::TheScene().hook = nullptr;
            inner.act();
          }
        };
        const std::string written = Written(outer.act);
        reached = left < 0;
        EXPECT_EQ(written, reached ? before + innerLines + outerLines.substr(before.size()) : outerLines)
            << inner.name << " at call " << at << " of " << outer.name;
        calls += reached ? 1U : 0U;
      }
    }
  }
  EXPECT_EQ(calls, (15 + 7 + 3 + 3 + 2 + 2) * actions.size());
}

TEST_F(Reentry, FromTheDestructorOfWhatIsReplacedFindsTheNewOneInPlace) {
  for (const Action& action : actions) {
    SCOPED_TRACE(action.name);
    Arrange();
    const std::string lines = Written(action.act);
    library->SetLogging(nullptr, std::make_shared<HostLogging>("object", action.act));
    Journal();
    EXPECT_EQ(Written([&] { library->SetLogging(nullptr, logging); }), Scope("SetInstance", "object released", lines));
    library->SetGateway(nullptr, std::make_shared<HostGateway>("object", action.act));
    Journal();
    EXPECT_EQ(Written([&] { library->SetGateway(nullptr, std::make_shared<HostGateway>("gateway")); }),
              Scope("SetTolvaServicesInstance", "object released", lines));

    // A factory's deleter is destroyed with the last weak reference, which is the slot's.
    std::shared_ptr<Library::IFactory> found;
    const auto find = [&] { found = library->GetFactory(), action.act(); };
    library->SetLogging(
        {new Library::IFactory, [slot = std::make_shared<Released>("slot", find)](auto* it) { delete it; }}, logging);
    const auto made = library->GetFactory();
    EXPECT_EQ(found, made);
  }
}

}  // namespace
