// What recording on a server costs a host. PGHOST names the folder of the server's socket.
//   wire count VERSIONS: the round trips of a host's start with so many activity versions, and of its operations.
//   wire near|far SAVES: the time of a save, and of the raw transaction; far: 5 ms for a round trip.
//   wire hosts NUMBER SECONDS: the events that so many hosts save in a second, and so many raw loops.

#include "RawTransaction.h"
#include "RecordingHost.h"
#include "support/Proxy.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>

namespace {

using namespace Quor::Velora::Infra::TsLogging;
using Clock = std::chrono::steady_clock;

constexpr const char* address = "dbname=postgres";

constexpr const char* database = "Backend='postgresql' Connection='dbname=postgres'";

/// Runs a task in a process of its own.
template <typename Task>
pid_t Start(const Task& task) {
  const pid_t process = fork();
  if (process == 0) {
    int code = EXIT_FAILURE;
    try {
      task();
      code = EXIT_SUCCESS;
    } catch (const std::exception& error) {
      std::cerr << error.what() << '\n';
    }
    _exit(code);
  }
  return process;
}

void AwaitEnd(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error("a process has failed");
  }
}

void MakeStore() {
  AwaitEnd(Start([] { RecordingHost{database}; }));
}

/// Leads this process to the server through a proxy.
void LeadThrough(std::optional<Proxy>& proxy, const ScratchFolder& folder) {
  proxy.emplace(folder / "proxy", std::getenv("PGHOST"));
  setenv("PGHOST", (folder / "proxy").c_str(), 1);
}

/// The files of a host, in the current folder.
void WriteFiles(const ScratchFolder& folder, int versions) {
  std::string activities;
  for (int version = 1; version <= versions; ++version) {
    activities += "<ActivityVersion Name='Step" + std::to_string(version) + "' Version='1.0'/>";
  }
  folder.Write("TSAL.config", "<TSAL Instrument='Veldmar 3'><Database " + std::string(database) + "/></TSAL>");
  folder.Write("activities.xml", "<Activities><Activity Name='Series'>" + activities + "</Activity></Activities>");
  folder.Write("instrument.xml", "<Instrument/>");
  current_path(folder.path);
}

void Count(int versions) {
  MakeStore();
  const ScratchFolder folder;
  std::optional<Proxy> proxy;
  LeadThrough(proxy, folder);
  WriteFiles(folder, versions);
  const auto count = [&](const char* what, const auto& operation) {
    proxy->roundTrips = 0;
    operation();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // until the proxy has counted the last one
    std::cout << what << ' ' << proxy->roundTrips << '\n';
  };
  std::shared_ptr<ITsLogging> logging;
  count("bring-up", [&] { logging = IFactory::CreateTsLogging("instrument.xml"); });
  std::string run, step;
  const auto makeRun = [&] { run = logging->CreateActivityExecution("Step1", "grid 7", "a run"); };
  const auto makeStep = [&] { step = logging->CreateActivityExecution(run, "Step2", "position 1", "a step"); };
  logging->CreateInstrumentEvent("Exposure");
  logging->AddInstrumentEventParameter("Exposure", "TiltAngle", -59.98);
  count("execution-at-the-top", makeRun);
  count("execution-below", makeStep);
  count("save", [&] { logging->SaveInstrumentEvent("Exposure", step); });
  count("update", [&] { logging->UpdateActivityExecution(step); });
}

template <typename Operation>
double MedianTime(int times, const Operation& operation) {
  std::vector<double> taken;
  for (int time = 0; time < times; ++time) {
    const Clock::time_point begin = Clock::now();
    operation();
    taken.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
  }
  std::nth_element(taken.begin(), taken.begin() + times / 2, taken.end());
  return taken[static_cast<std::size_t>(times / 2)];
}

// Five times in turn, so that both meet the same load of the computer; the medians of these.
void ShowTimes(std::chrono::microseconds delay, int saves) {
  MakeStore();
  const ScratchFolder folder;
  std::optional<Proxy> proxy;
  if (delay.count() != 0) {
    LeadThrough(proxy, folder);
    proxy->delay = delay;
  }
  const RecordingHost host(database);
  RawTransaction raw(address, host.Execution());
  std::vector<double> ofHost, ofRaw;
  for (int turn = 0; turn < 5; ++turn) {
    ofHost.push_back(MedianTime(saves, [&] { host.SaveEvent(); }));
    ofRaw.push_back(MedianTime(saves, [&] { raw.SaveEvent(); }));
  }
  std::sort(ofHost.begin(), ofHost.end());
  std::sort(ofRaw.begin(), ofRaw.end());
  std::cout << "save " << ofHost[2] << " ms, raw transaction " << ofRaw[2] << " ms, ratio " << ofHost[2] / ofRaw[2]
            << '\n';
}

/// How many events so many processes save in a second.
template <typename MakeSaver>
double RateOf(int processes, int seconds, const MakeSaver& makeSaver) {
  std::vector<int> counts(static_cast<std::size_t>(processes));
  std::vector<std::pair<pid_t, int>> started;
  const Clock::time_point begin = Clock::now() + std::chrono::seconds(2 + processes / 8);  // when all are ready
  for (int process = 0; process < processes; ++process) {
    int ends[2];
    if (pipe(ends) != 0) {
      throw std::runtime_error("no pipe");
    }
    started.emplace_back(Start([&] {
                           auto saver = makeSaver();
                           saver.SaveEvent();
                           std::this_thread::sleep_until(begin);
                           int saved = 0;
                           for (; Clock::now() < begin + std::chrono::seconds(seconds); ++saved) {
                             saver.SaveEvent();
                           }
                           if (write(ends[1], &saved, sizeof saved) != sizeof saved) {
                             throw std::runtime_error("cannot tell");
                           }
                         }),
                         ends[0]);
    close(ends[1]);
  }
  int all = 0;
  for (const auto& [process, end] : started) {
    int saved = 0;
    AwaitEnd(process);
    if (read(end, &saved, sizeof saved) != sizeof saved) {
      throw std::runtime_error("a process told nothing");
    }
    close(end);
    all += saved;
  }
  return static_cast<double>(all) / seconds;
}

struct RawSaver {
  RawSaver() : host(database), raw(address, host.Execution()) {}
  void SaveEvent() { raw.SaveEvent(); }
  RecordingHost host;
  RawTransaction raw;
};

void ShowRates(int hosts, int seconds) {
  MakeStore();
  for (int turn = 0; turn < 3; ++turn) {
    const double ofHosts = RateOf(hosts, seconds, [] { return RecordingHost(database); });
    const double ofRaw = RateOf(hosts, seconds, [] { return RawSaver(); });
    std::cout << hosts << " hosts " << ofHosts << " events a second, raw loops " << ofRaw << ", ratio "
              << ofHosts / ofRaw << std::endl;
  }
}

}  // namespace

int main(int count, char** arguments) try {
  setenv("VELORA_LOG_FILE", "/dev/null", 1);
  const std::string_view what = count > 1 ? arguments[1] : "";
  if (what == "count" && count == 3) {
    Count(std::stoi(arguments[2]));
  } else if ((what == "near" || what == "far") && count == 3) {
    ShowTimes(std::chrono::microseconds(what == "far" ? 2500 : 0), std::stoi(arguments[2]));
  } else if (what == "hosts" && count == 4) {
    ShowRates(std::stoi(arguments[2]), std::stoi(arguments[3]));
  } else {
    std::cerr << "expected 'count VERSIONS', 'near SAVES', 'far SAVES' or 'hosts NUMBER SECONDS'\n";
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return EXIT_FAILURE;
}
