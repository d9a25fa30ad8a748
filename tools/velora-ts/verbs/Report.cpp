#include "output/Output.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "page/writer/ComparedPage.h"
#include "page/writer/Frame.h"
#include "page/writer/LogColumns.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "verbs/ComparisonOptions.h"
#include "verbs/LogOptions.h"
#include "verbs/RunForms.h"
#include "verbs/SecondRun.h"
#include "verbs/StoreVerb.h"

#include <optional>

namespace Velora::Ts {

using namespace Store;

namespace {

class ReportVerb : public StoreVerb {
 public:
  explicit ReportVerb(Options& options)
      : StoreVerb(options, With::Nothing),
        logs(options),
        second(options, "; without --against, of the one that has RUN"),
        rules(options) {
    options.AddRequiredText("RUN", name, "The run to show: " VELORA_RUN_FORMS);
    options.AddText("-o,--output", file,
                    "The file to write. Default: run-GUID.html, with the first letters of the guid", "FILE");
    options.AddText("--against", secondName, "A run to compare it with, named as RUN", "RUN2");
    for (const char* option : {"--tolerance", "--ignore"}) {
      options.Require(option, "--against");
    }
  }

  ExitCode Execute() override {
    const Page::Frame frame = Page::RunFrame();  // first, because a build may lack it
    Settings settings = StoreSettings();
    if (secondName.empty() && !second.Place().empty()) {
      settings.database = StoreAt(second.Place());
    }
    const Reader store(settings.database);
    const std::optional<Run> run = TheRunNamed(store, name);
    if (!run) {
      return Found;
    }
    const std::string path = file.empty() ? "run-" + run->guid.substr(0, 8) + ".html" : file;
    std::optional<Page::LogColumns> log;
    if (logs.IsGiven()) {
      LogFile::LogFiles lines = logs.LinesOf(store, *run);
      log.emplace(lines);
    }
    const std::optional<Run> other = secondName.empty() ? std::nullopt : second.Find(store, *run, secondName);
    if (!secondName.empty() && !other) {
      return Found;
    }
    const std::optional<Comparison::Side> side =
        other ? std::optional(Comparison::Side{second.StoreOf(store), *other}) : std::nullopt;
    const Page::ComparedPage compared({store, *run}, side, rules.Rules(), settings.units, log ? &*log : nullptr);
    const Page::RunPage& page = compared.Page();
    OutputFile target("page", path, beginningOfPages);
    {
      Progress progress("Writing events", page.Events());
      page.Write(
          frame, [&](std::string_view piece) { target.Write(piece); }, [&] { progress.Add(1); });
    }
    store.ExpectUntouched();
    second.StoreOf(store).ExpectUntouched();
    target.Finish();
    Complain(InWords(*run) + ": " + page.EventsInWords() + (log ? ", " + log->InWords() : "") + ", written to '" +
             path + "', " + std::to_string(target.Bytes()) + " bytes");
    return Done;
  }

 private:
  const LogOptions logs;
  SecondRun second;
  const ComparisonOptions rules;
  std::string name, file, secondName;
};

}  // namespace

extern const Registration registeredReport = {
    "report", "Writes a page that shows a run in any browser, as one file that needs no other.",
    "report last -o run.html", &Make<ReportVerb>};

}  // namespace Velora::Ts
