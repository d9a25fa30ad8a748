// What the local TS and the default logger cost. Each case has a store of its own in the folder TMPDIR.
//   store-benchmark --beside FOLDER write|read: the other process of some cases; ends when it is killed.
//   store-benchmark --growth EVENTS: memory in use and size of the file after each tenth of so many events.

#include "RawStore.h"
#include "RecordingHost.h"
#include "Run.h"
#include "support/ScratchFolder.h"

#include <TSAL/Methods.h>
#include <VeloraInfraLogging/Logger.h>

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <optional>
#include <string_view>
#include <vector>

namespace {

using namespace Quor::TolvaServices;
using namespace Types;

constexpr const char* settings = "<TSAL Instrument='Scope'><Database Backend='sqlite3' Connection='ts.db'/></TSAL>";

/// A host that records into a store.
class Host {
 public:
  explicit Host(const std::string& folder) {
    TSInstance::SetTsalPath(folder);
    TSInstance::BeginSession();
    execution.Node = "ZValue 17";
    execution.Status = {Enums::ActivityExecStatus::Running, DateTimeOffset::Now()};
    Methods::ActivityMethods::SaveActivityExecution(execution, SessionHandle::Empty);
    event.Name = "Exposure";
    event.Parameters = {std::make_shared<InstrumentParameterBoolean>("Good", true),
                        std::make_shared<InstrumentParameterDouble>("TiltAngle", -59.98),
                        std::make_shared<InstrumentParameterInt>("Shot", 17),
                        std::make_shared<InstrumentParameterString>("Note", "after focusing")};
  }
  void SaveEvent() const {
    Methods::LoggingMethods::SaveEvent(event, Tsid(), &execution.Id, false, SessionHandle::Empty);
  }

 private:
  ActivityExecution execution;
  InstrumentEvent event;
};

struct Store {
  Store() { folder.Write("TSAL.config", settings); }
  const ScratchFolder folder;
};

/// Another process on the same store.
class Beside {
 public:
  Beside(const std::string& folder, const char* what) : process(fork()) {
    if (process == 0) {
      execl("/proc/self/exe", "store-benchmark", "--beside", folder.c_str(), what, nullptr);
      _exit(127);
    }
    usleep(200'000);  // it is at work by then
  }
  Beside(const Beside&) = delete;
  Beside& operator=(const Beside&) = delete;
  ~Beside() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }

 private:
  const pid_t process;
};

/// Repeats a task and notes how long each time took; the 99th percentile in microseconds stands beside the mean.
template <typename Task>
void Repeat(benchmark::State& state, const Task& task) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> times;
  task();
  for (auto _ : state) {
    const Clock::time_point begin = Clock::now();
    task();
    times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
  }
  const auto rank = times.begin() + static_cast<std::ptrdiff_t>(times.size() * 99 / 100);
  std::nth_element(times.begin(), rank, times.end());
  state.counters["p99_us"] = *rank;
}

void SaveByTs(benchmark::State& state) {
  const Store store;
  const Host host(store.folder.path.string());
  Repeat(state, [&] { host.SaveEvent(); });
}
BENCHMARK(SaveByTs)->Name("save/ts")->UseRealTime();

void SaveRaw(benchmark::State& state) {
  const Store store;
  const Host host(store.folder.path.string());
  RawStore raw((store.folder / "ts.db").string());
  Repeat(state, [&] { raw.SaveEvent(); });
}
BENCHMARK(SaveRaw)->Name("save/raw")->UseRealTime();

void SaveByHost(benchmark::State& state) {
  const RecordingHost host;
  Repeat(state, [&] { host.SaveEvent(); });
}
BENCHMARK(SaveByHost)->Name("host/file")->UseRealTime();

void SaveRawForHost(benchmark::State& state) {
  const RecordingHost host;
  RawStore raw(host.Store().string());
  Repeat(state, [&] { raw.SaveEvent(); });
}
BENCHMARK(SaveRawForHost)->Name("host/file-raw")->UseRealTime();

void SaveRowByRow(benchmark::State& state) {
  const Store store;
  const Host host(store.folder.path.string());
  RawStore raw((store.folder / "ts.db").string());
  Repeat(state, [&] { raw.SaveEventRowByRow(); });
}
BENCHMARK(SaveRowByRow)->Name("save/row-by-row")->UseRealTime();

/// A thousand events in a store that holds so many.
void SaveAfterMany(benchmark::State& state) {
  static std::map<std::int64_t, Store> stores;
  const auto [entry, isNew] = stores.try_emplace(state.range(0));
  const std::filesystem::path& folder = entry->second.folder.path;
  const Host host(folder.string());
  if (isNew) {
    RawStore((folder / "ts.db").string()).AddEvents(static_cast<int>(state.range(0)));
  }
  Repeat(state, [&] { host.SaveEvent(); });
}
BENCHMARK(SaveAfterMany)->Name("after")->Arg(0)->Arg(1'000'000)->Iterations(1'000)->UseRealTime();

void SaveBeside(benchmark::State& state, const char* what) {
  const Store store;
  const Host host(store.folder.path.string());
  const std::optional<Beside> other(std::in_place, store.folder.path.string(), what);
  Repeat(state, [&] { host.SaveEvent(); });
}
BENCHMARK_CAPTURE(SaveBeside, write, "write")->Name("beside/writer")->UseRealTime();
BENCHMARK_CAPTURE(SaveBeside, read, "read")->Name("beside/reader")->UseRealTime();

const std::string line = "Add instrument event parameter. node: Exposure, parameter: Shot, value(int): \"17\"";

void LogLine(benchmark::State& state) {
  static const ScratchFolder folder;
  setenv("VELORA_LOG_FILE", (folder / "log").c_str(), 1);
  const auto logger = Quor::Velora::Infra::Logging::Logger::GetInstance();
  Repeat(state, [&] { logger->WriteInfo(L"Velora.TsLogging", line); });
}
BENCHMARK(LogLine)->Name("line/logger");

void WriteLine(benchmark::State& state) {
  const ScratchFolder folder;
  std::ofstream file(folder / "log");
  Repeat(state, [&] { file << "2026-11-25T02:09:21.123456+00:00 [info] [Velora.TsLogging] " << line << std::endl; });
}
BENCHMARK(WriteLine)->Name("line/raw");

[[noreturn]] void WorkBeside(const std::string& folder, std::string_view what) {
  if (what == "write") {
    for (const Host host(folder);;) {
      host.SaveEvent();
    }
  }
  sqlite3* database = nullptr;
  sqlite3_open((folder + "/ts.db").c_str(), &database);
  for (;;) {
    sqlite3_exec(database, "SELECT * FROM readings ORDER BY event_id DESC, position LIMIT 100", nullptr, nullptr,
                 nullptr);
  }
}

/// Pages in memory, of 4 KiB.
long PagesInUse() {
  long all = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident;
}

void ShowGrowth(int events) {
  const Store store;
  const Host host(store.folder.path.string());
  for (int event = 1; event <= events; ++event) {
    host.SaveEvent();
    if (event % (events / 10) == 0) {
      std::cout << event << " events: " << 4 * PagesInUse() << " KiB of memory, "
                << file_size(store.folder / "ts.db") / static_cast<std::uintmax_t>(event)
                << " bytes of the file for each" << std::endl;
    }
  }
}

}  // namespace

int main(int count, char** arguments) try {
  const std::string_view option = count > 1 ? arguments[1] : "";
  if (count == 4 && option == "--beside") {
    WorkBeside(arguments[2], arguments[3]);
  }
  if (count == 3 && option == "--growth") {
    ShowGrowth(std::stoi(arguments[2]));
    return EXIT_SUCCESS;
  }
  return Run(count, arguments);
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return EXIT_FAILURE;
}
