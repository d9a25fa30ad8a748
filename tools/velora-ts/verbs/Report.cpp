#include "output/Output.h"
#include "output/Progress.h"
#include "output/Words.h"
#include "page/writer/Against.h"
#include "page/writer/LogColumns.h"
#include "page/writer/RunPage.h"
#include "store/reading/Reader.h"
#include "store/reading/Runs.h"
#include "verbs/ComparisonOptions.h"
#include "verbs/LogOptions.h"
#include "verbs/SecondRun.h"
#include "verbs/StoreVerb.h"

#include "store/Error.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

namespace Velora::Ts {

using namespace Store;

namespace {

/// The file of a page: complete under its name, or not there at all.
class PageFile {
 public:
  explicit PageFile(const std::string& path) : path(path), target(TargetOf(path)) {
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown) && !std::filesystem::is_regular_file(path, unknown)) {
      fresh = target;
      stream.reset(std::fopen(fresh.c_str(), "w"));
    }
    for (int number = 1; !stream && (number == 1 || errno == EEXIST); ++number) {
      fresh = target + '.' + std::to_string(number) + ".new";
      stream.reset(std::fopen(fresh.c_str(), "wx"));
    }
    Expect(stream != nullptr);
  }
  PageFile(const PageFile&) = delete;
  PageFile& operator=(const PageFile&) = delete;
  ~PageFile() {
    if (stream && fresh != target) {
      static_cast<void>(std::remove(fresh.c_str()));
    }
  }

  void Write(std::string_view text) {
    Expect(std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size());
    bytes += text.size();
  }
  void Finish() {
    Expect(std::fflush(stream.get()) == 0);
    Expect(fresh == target || std::rename(fresh.c_str(), target.c_str()) == 0);
    stream.reset();
  }
  std::size_t Bytes() const { return bytes; }

 private:
  /// What a link leads to, so that it stays one.
  static std::string TargetOf(const std::string& path) {
    std::error_code unknown;
    const std::filesystem::path target = std::filesystem::canonical(path, unknown);
    return unknown ? path : target.string();
  }
  void Expect(bool good) const {
    if (!good) {
      throw Store::Error("page '" + path + "' cannot be written: " + std::system_category().message(errno));
    }
  }

  const std::string path;
  const std::string target;
  std::string fresh;  // what is written to
  std::unique_ptr<FILE, int (*)(FILE*)> stream{nullptr, &std::fclose};
  std::size_t bytes = 0;
};

class ReportVerb : public StoreVerb {
 public:
  explicit ReportVerb(Options& options) : StoreVerb(options), logs(options), second(options), rules(options) {
    options.AddRequiredText("RUN", name, "The run to show");
    options.AddText("-o,--output", file,
                    "The file to write. Default: run-GUID.html, with the first letters of the guid", "FILE");
    options.AddText("--against", secondName, "A run to compare it with, named as RUN");
    for (const char* option : {"--with", "--tolerance", "--ignore"}) {
      options.Require(option, "--against");
    }
  }

  ExitCode Execute() override {
    const Settings settings = StoreSettings();
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
    std::optional<Comparison> comparison;
    std::optional<Page::Against> against;
    if (other) {
      comparison.emplace(Comparison::Side{store, *run}, Comparison::Side{second.StoreOf(store), *other}, rules.Rules());
      against.emplace(*comparison);
    }
    const Page::RunPage page(store, *run, {settings.units, log ? &*log : nullptr, against ? &*against : nullptr});
    PageFile target(path);
    {
      Progress progress("Writing events", page.Events());
      page.Write([&](std::string_view piece) { target.Write(piece); }, [&] { progress.Add(1); });
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
    "report",
    "Writes a page that shows a run in any browser, as one file that needs no other. RUN is named as for export.",
    "report last -o run.html", &Make<ReportVerb>};

}  // namespace Velora::Ts
