#include "TiltSeriesRecording.h"

#include "DataFolder.h"
#include "EarlierSeries.h"
#include "ExampleSettings.h"
#include "MdocReader.h"
#include "ProgressBar.h"
#include "SeriesRecorder.h"
#include "System.h"

#include <VeloraSystem/Path.h>
#include <VeloraText/Printable.h>
#include <VeloraTsLogging/IFactory.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using Quor::Velora::Infra::TsLogging::IFactory;
using Quor::Velora::Infra::TsLogging::ITsLogging;
using Velora::System::PathOf;
using Velora::Text::WriteLine;

namespace {

std::uint64_t SizeOf(const fs::path& file) {
  std::error_code unknown;
  const std::uintmax_t size = fs::file_size(file, unknown);
  return unknown ? 0 : size;
}

/// Records all files. If one fails, the others are recorded all the same.
class Run {
 public:
  Run(ITsLogging& logging, const std::vector<fs::path>& files, std::chrono::milliseconds pace)
      : logging(logging),
        pace(pace),
        bar(std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                            [](std::uint64_t sum, const fs::path& f) { return sum + SizeOf(f); })) {}

  void Record(const fs::path& file) {
    const RecordCounts before = counts;
    try {
      RecordSeries(logging, file, counts, [&](std::uint64_t bytes) {
        bar.Show(bytesBefore + bytes, file.filename().string());
        WaitInNewSection();
      });
      bar.Clear();
      if (!bar.IsShown()) {
        WriteLine(std::cout, file.string() + ": " + std::to_string(counts.sections - before.sections) + " sections, " +
                                 std::to_string(counts.parameters - before.parameters) + " parameters recorded");
      }
    } catch (const NothingCreated& reason) {
      tsMissing = true;
      Complain(reason.what());
    } catch (const MdocError& reason) {
      Complain(reason.what());
    } catch (const std::exception& reason) {  // from TS, whose exception does not name the file
      Complain(file.string() + ": " + reason.what());
    }
    bytesBefore += SizeOf(file);
  }

  RecordingOutcome Summarise() const {
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (counts.series == 0 && tsMissing) {
      WriteLine(std::cout,
                "Nothing was recorded: TS is not available. Either its service is absent, or it cannot be "
                "reached as " +
                    (fs::current_path() / "TSAL.config").string() + " says.");
      return NothingRecorded;
    }
    if (counts.series == 0) {
      std::cout << "Nothing was recorded." << std::endl;
      return SomethingFailed;
    }
    std::cout << "Recorded " << counts.series << " series, " << counts.sections << " sections, " << counts.events
              << " events, " << counts.parameters << " parameters in " << seconds.count() << " seconds\n";
    WriteLine(std::cout, "in the folder " + fs::current_path().string());
    if (failed) {
      std::cout << "Not everything was recorded: see the errors above." << std::endl;
    }
    return failed ? SomethingFailed : Recorded;
  }

 private:
  void WaitInNewSection() {
    if (counts.sections > waitedIn) {
      waitedIn = counts.sections;
      std::this_thread::sleep_for(pace);
    }
  }

  void Complain(const std::string& what) {
    failed = true;
    bar.Clear();
    WriteLine(std::cerr, what);
  }

  ITsLogging& logging;
  const std::chrono::milliseconds pace;
  ProgressBar bar;
  RecordCounts counts;
  std::uint64_t bytesBefore = 0;
  std::uint64_t waitedIn = 0;  // the number of sections
  bool failed = false;
  bool tsMissing = false;
  const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

template <typename Work>
int Guarded(const Work& work) {
  try {
    return work();
  } catch (const std::exception& reason) {
    WriteLine(std::cerr, std::string("Nothing was recorded: ") + reason.what());
    return SomethingFailed;
  }
}

}  // namespace

int EnterRecordFolder(const char* folder) {
  return Guarded([folder] {
    EnterDataFolder(PathOf(folder));
    // The terminal shows the progress; the component's log lines go to a file beside the records.
    SetUnlessSet("VELORA_LOG_FILE", "velora.log");
    return Recorded;
  });
}

int RecordTiltSeries(const char* const* files, std::size_t count, long long pace) {
  return Guarded([files, count, pace] {
    std::vector<fs::path> paths;
    std::transform(files, files + count, std::back_inserter(paths), PathOf);
    SayWhatIsThere(paths);
    const std::shared_ptr<ITsLogging> logging = IFactory::CreateTsLogging(instrumentConfigFile);
    Run run(*logging, paths, std::chrono::milliseconds(pace));
    for (const fs::path& path : paths) {
      run.Record(path);
    }
    return run.Summarise();
  });
}
