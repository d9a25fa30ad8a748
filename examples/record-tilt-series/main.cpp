// Records tilt series from .mdoc files through the TS logging component.

#include "DataFolder.h"
#include "ExampleSettings.h"
#include "MdocReader.h"
#include "ProgressBar.h"
#include "SeriesRecorder.h"

#include <VeloraTsLogging/IFactory.h>

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using Quor::Velora::Infra::TsLogging::IFactory;
using Quor::Velora::Infra::TsLogging::ITsLogging;

namespace {

enum ExitCode { Recorded = 0, SomethingFailed = 1, WrongUsage = 2, NothingRecorded = 3 };

struct Options {
  fs::path data = ".";
  std::vector<fs::path> files;
};

std::uint64_t SizeOf(const fs::path& file) {
  std::error_code unknown;
  const std::uintmax_t size = fs::file_size(file, unknown);
  return unknown ? 0 : size;
}

/// Records file after file; one that fails does not keep the others from being recorded.
class Run {
 public:
  Run(ITsLogging& logging, const std::vector<fs::path>& files)
      : logging(logging),
        bar(std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                            [](std::uint64_t sum, const fs::path& f) { return sum + SizeOf(f); })) {}

  void Record(const fs::path& file) {
    const RecordCounts before = counts;
    try {
      RecordSeries(logging, file, counts,
                   [&](std::uint64_t bytes) { bar.Show(bytesBefore + bytes, file.filename().string()); });
      bar.Clear();
      if (!bar.IsShown()) {
        std::cout << file.string() << ": " << counts.sections - before.sections << " sections, "
                  << counts.parameters - before.parameters << " parameters recorded" << std::endl;
      }
    } catch (const NothingCreated& reason) {
      tsMissing = true;
      Complain(reason.what());
    } catch (const MdocError& reason) {
      Complain(reason.what());
    } catch (const std::exception& reason) {  // of TS, which does not know the file
      Complain(file.string() + ": " + reason.what());
    }
    bytesBefore += SizeOf(file);
  }

  ExitCode Summarise() const {
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (counts.series == 0 && tsMissing) {
      std::cout
          << "Nothing was recorded: TS is not available. Either its service is absent, or it cannot be reached as "
          << (fs::current_path() / "TSAL.config").string() << " says." << std::endl;
      return NothingRecorded;
    }
    if (counts.series == 0) {
      std::cout << "Nothing was recorded." << std::endl;
      return SomethingFailed;
    }
    std::cout << "Recorded " << counts.series << " series, " << counts.sections << " sections, " << counts.events
              << " events, " << counts.parameters << " parameters in " << seconds.count() << " seconds\n"
              << "in the folder " << fs::current_path().string() << std::endl;
    if (failed) {
      std::cout << "Not everything could be recorded: see the errors above." << std::endl;
    }
    return failed ? SomethingFailed : Recorded;
  }

 private:
  void Complain(const std::string& what) {
    failed = true;
    bar.Clear();
    std::cerr << what << std::endl;
  }

  ITsLogging& logging;
  ProgressBar bar;
  RecordCounts counts;
  std::uint64_t bytesBefore = 0;
  bool failed = false;
  bool tsMissing = false;
  const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

ExitCode RecordAll(const Options& options) {
  EnterDataFolder(options.data);
  // The terminal is for the progress; the component's lines stay with the record.
  setenv("VELORA_LOG_FILE", (fs::current_path() / "velora.log").c_str(), 0);
  const std::shared_ptr<ITsLogging> logging = IFactory::CreateTsLogging(instrumentConfigFile);
  Run run(*logging, options.files);
  for (const fs::path& file : options.files) {
    run.Record(file);
  }
  return run.Summarise();
}

ExitCode Main(int argc, char** argv) {
  Options options;
  CLI::App app("Records tilt series from .mdoc files: one execution for each file and one for each of its sections.");
  app.add_option("--data", options.data,
                 "Folder of the record and its settings; what it lacks of them is put there. "
                 "Default: the current directory");
  app.add_option("FILE", options.files, "An .mdoc file")->required();
  app.footer(
      "Exit code: 0 all was recorded, 1 something was not, 2 wrong usage, 3 TS is not available and nothing was "
      "recorded.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Recorded : WrongUsage;
  }
  for (fs::path& file : options.files) {
    file = fs::absolute(file);
  }
  return RecordAll(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const std::exception& reason) {
    std::cerr << "Nothing was recorded: " << reason.what() << std::endl;
    return SomethingFailed;
  }
}
