#include "output/Output.h"
#include "output/Units.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/reading/Runs.h"
#include "store/values/StoredText.h"
#include "store/values/StoredTime.h"
#include "verbs/AbsentNames.h"
#include "verbs/DigitsOption.h"
#include "verbs/LogOfRun.h"
#include "verbs/LogOptions.h"
#include "verbs/RunForms.h"
#include "verbs/ShownRun.h"
#include "verbs/StoreVerb.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

/// Whether an event of a run has a parameter of a name.
bool HasParameter(const Store::Reader& store, const Run& run, const std::string& name) {
  Rows any(store,
           "SELECT 1 FROM executions x CROSS JOIN events v CROSS JOIN parameters p WHERE x.root_id = ?1 AND "
           "v.execution_id = x.execution_id AND p.event_id = v.event_id AND p.name = ?2 LIMIT 1");
  return any.Ask(run.root, ToStoredText(name)).Next();
}

class ShowVerb : public StoreVerb {
 public:
  explicit ShowVerb(Options& options) : StoreVerb(options), digits(options), logs(options) {
    options.AddRequiredText("RUN", name, "The run to show: " VELORA_RUN_FORMS);
    options.AddFlag("--tree", chosen.tree, "Show all levels below the run, not only its children");
    options.AddFlag("--events", chosen.events, "Show its events too, one a line");
    options.AddList("--columns", chosen.columns,
                    "Parameters to show of each execution, separated by commas; of several values, the last one. "
                    "Default: the first three parameters of each",
                    "PARAMETER");
    options.AddText("--order", chosen.order,
                    "Order the executions by the times that this parameter states, such as DateTime. Default: as they "
                    "were recorded",
                    "PARAMETER");
    options.AddFlag("--json", json, "Write a JSON object, with times in UTC");
  }

  ExitCode Execute() override {
    chosen.digits = digits.Value();
    const Settings settings = StoreSettings();
    chosen.units = Units(settings.units);
    const Reader store(settings.database);
    const std::optional<Run> run = TheRunNamed(store, name);
    if (!run) {
      return Found;
    }
    for (const std::string& column : chosen.columns) {
      if (!HasParameter(store, *run, column) &&
          ExplainAbsence(store, Named::Parameter, ToStoredText(column)) == Found) {
        return Found;
      }
    }
    std::optional<LogOfRun> log;
    if (logs.IsGiven()) {
      log.emplace(logs.LinesOf(store, *run), Microseconds(LastRecorded(store, *run)).value_or(0), chosen.events);
    }
    (json ? ShowAsJson : ShowInWords)(store, *run, chosen, log ? &*log : nullptr);
    FlushOut();
    store.ExpectUntouched();
    return Done;
  }

 private:
  std::string name;
  ShowOptions chosen;
  DigitsOption digits;
  const LogOptions logs;
  bool json = false;
};

}  // namespace

extern const Registration registeredShow = {"show", "Shows a run: its head and a row for each execution below it.",
                                            "show last --columns TiltAngle,ExposureDose,Defocus", &Make<ShowVerb>};

}  // namespace Velora::Ts
