#include "comparing/Differences.h"
#include "output/Output.h"
#include "output/Words.h"
#include "store/reading/Reader.h"
#include "verbs/ComparisonOptions.h"
#include "verbs/DigitsOption.h"
#include "verbs/RunForms.h"
#include "verbs/SecondRun.h"
#include "verbs/StoreVerb.h"

namespace Velora::Ts {

using namespace Store;

namespace {

class DiffVerb : public StoreVerb {
 public:
  explicit DiffVerb(Options& options)
      : StoreVerb(options, With::Nothing), second(options), rules(options), digits(options) {
    options.AddRequiredText("RUN", name, "The run to compare: " VELORA_RUN_FORMS);
    options.AddText("RUN2", secondName,
                    "The run to compare it with, named as RUN. Default: the newest finished run of the same activity "
                    "and instrument "
                    "that started before RUN",
                    "RUN2");
    rules.AddSlower(options);
    options.AddFlag("--all", all, "Write every difference instead of a summary, and what is equal");
    options.AddFlag("--json", json, "Write a JSON object with every difference, with times in UTC");
  }

  ExitCode Execute() override {
    const Store::ComparisonRules compareBy = rules.Rules();
    const Reader store(Database());
    const std::optional<Run> run = TheRunNamed(store, name);
    const std::optional<Run> other = run ? second.Find(store, *run, secondName) : std::nullopt;
    if (!other) {
      return Found;
    }
    const Reader& otherStore = second.StoreOf(store);
    const ComparedRuns compared({store, *run}, {otherStore, *other}, compareBy, rules.DurationsCount());
    const Differences& found = compared.Found();
    Summary summary;
    if (json) {
      WriteDifferencesAsJson(found, summary, all, &WriteData);
    } else {
      found.comparison.Visit([&](const Compared& one) { summary.Add(one); });
      WriteDifferencesInWords(found, summary, {all, digits.Value()});
    }
    FlushOut();
    store.ExpectUntouched();
    otherStore.ExpectUntouched();
    return found.AreNone(summary) ? Done : Found;
  }

 private:
  std::string name, secondName;
  SecondRun second;
  ComparisonOptions rules;
  DigitsOption digits;
  bool all = false, json = false;
};

}  // namespace

extern const Registration registeredDiff = {"diff",
                                            "Says how a run differs from another one, or without RUN2 from the newest "
                                            "finished one like it. The exit code is 0 if nothing "
                                            "differs, and 1 if something does.",
                                            "diff last --tolerance 1% --ignore ImageFile", &Make<DiffVerb>};

}  // namespace Velora::Ts
