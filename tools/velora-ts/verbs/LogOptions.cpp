#include "verbs/LogOptions.h"

#include "store/reading/Hosts.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "store/values/StoredTime.h"

#include <limits>
#include <stdexcept>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr long long afterTheLastRecord = 600'000'000;  // microseconds
constexpr long long anyTime = std::numeric_limits<long long>::max();

long long StartOf(const Run& run) { return Microseconds(run.startedAt).value_or(0); }

}  // namespace

LogOptions::LogOptions(Options& options) {
  options.AddFiles("--log", files, "Show warnings and errors of these log files too, in the order of their times");
  options.AddFlag("--log-info", infos, "Show informational lines of the log too");
  options.AddText("--log-format", form,
                  "How the lines of the log are written, for example '{time:%d.%m.%Y %H:%M:%S} {level} {*} - {text}'. "
                  "Default: '{time} [{level}] [{source}] {text}', as the default logger writes",
                  "FORM");
  options.Require("--log-info", "--log");
  options.Require("--log-format", "--log");
}

LogFile::LogFiles LogOptions::LinesOf(const Reader& store, const Run& run) const {
  const RunState state = Hosts(store).Of(run).state;
  if (state == RunState::Running) {
    return {Selection(), StartOf(run), anyTime};
  }
  const long long last = Microseconds(LastRecorded(store, run)).value_or(anyTime - afterTheLastRecord);
  return {Selection(), StartOf(run), last + (state == RunState::Finished ? 0 : afterTheLastRecord)};
}

LogFile::LogFiles LogOptions::Following(const Run& run) const { return {Selection(), StartOf(run), anyTime, true}; }

LogFile::Selection LogOptions::Selection() const try {
  return {files, form.empty() ? LogFile::LineForm() : LogFile::LineForm(form), infos};
} catch (const std::invalid_argument& mistake) {
  throw UsageError(std::string("--log-format: ") + mistake.what());
}

}  // namespace Velora::Ts
