#include "LookCommands.h"

#include "output/Times.h"

#include <CLI/CLI.hpp>

#include <regex>

namespace Velora::Ts {

std::string TimeOf(const std::string& text) {
  static const std::regex form(R"((\d{4}-\d\d-\d\d(T([01]\d|2[0-3])(:[0-5]\d(:[0-5]\d(\.\d{1,6})?)?)?)?)Z?)");
  std::smatch parts;
  if (!std::regex_match(text, parts, form) || !Microseconds(parts[1].str())) {
    throw CLI::ValidationError("time '" + text + "'", "expected UTC as 2026-11-24 or 2026-11-24T21:55:03");
  }
  return parts[1];
}

LookCommands::LookCommands(const Adder& add, const Opener& database, ExitCode& result)
    : database(database), result(result) {
  AddRuns(*add("runs", "Lists runs, the newest first. What did not finish is marked UNFINISHED.",
               "runs --since 2026-11-24 --unfinished"));
  AddShow(*add("show",
               "Shows a run: its head and a row for each execution below it. RUN is what export takes, or the first "
               "letters that runs shows.",
               "show last --columns TiltAngle,ExposureDose,Defocus"));
  AddTail(*add("tail",
               "Writes a run's events, one a line, while they are recorded, until the run is finished. Without RUN it "
               "takes the one recorded last, and waits where there is none.",
               "tail"));
}

void LookCommands::AddRuns(CLI::App& verb) {
  verb.add_option("--instrument", filter.instrument, "Only those of this instrument");
  verb.add_option("--since", filter.since, "Only those that started then or later; UTC");
  verb.add_option("--activity", filter.activity, "Only those of this activity, or version of one");
  verb.add_flag("--unfinished", filter.unfinished, "Only those of which something did not finish");
  verb.add_option("--limit", filter.limit, "How many at most. Default: 50")->check(CLI::PositiveNumber);
  verb.add_flag("--json", filter.json, "As a JSON array; times in UTC");
  verb.callback([this] {
    filter.since = filter.since.empty() ? "" : TimeOf(filter.since);
    result = ListRuns(database(), filter);
  });
}

void LookCommands::AddShow(CLI::App& verb) {
  verb.add_option("RUN", run, "The run to show")->required();
  verb.add_flag("--tree", options.tree, "Everything below the run, not only its children");
  verb.add_flag("--events", options.events, "Its events too, one after the other");
  verb.add_option("--columns", options.columns,
                  "Parameters to show of each execution, separated by commas; of several values the last. Default: "
                  "its first three parameters")
      ->delimiter(',')
      ->allow_extra_args(false);
  verb.add_flag("--json", options.json, "As a JSON object; times in UTC");
  verb.callback([this] { result = ShowRun(database(), run, options); });
}

void LookCommands::AddTail(CLI::App& verb) {
  verb.add_option("RUN", run, "The run to follow");
  verb.callback([this] { result = Tail(database(), run); });
}

}  // namespace Velora::Ts
