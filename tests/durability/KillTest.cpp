// kill-test [--seed N] KILLS: kills hosts while they record, each at a random moment, and looks at what they leave.
// kill-test --together SECONDS [--hosts N]: lets hosts record into one file for that long, each at full speed.

#include "Host.h"
#include "Recording.h"
#include "support/ScratchFolder.h"

#include <VeloraCommandLine/Program.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace {

using std::chrono::milliseconds;

constexpr int killsOfOneStore = 25;
constexpr milliseconds longestLife{80};
constexpr int longEnough = 20;  // seconds

/// A store, and what the hosts that recorded into it said.
struct Store {
  Store() { PrepareFolder(folder.path); }
  void Add(const Told& more) {
    told.announced.insert(more.announced.begin(), more.announced.end());
    told.acknowledged.insert(more.acknowledged.begin(), more.acknowledged.end());
  }

  ScratchFolder folder;
  Told told;
};

bool GoesOn(const Host& host) {
  const std::size_t enough = host.Acknowledged() + 5;
  for (milliseconds waited{0}; host.Acknowledged() < enough && waited < std::chrono::seconds(longEnough); ++waited) {
    std::this_thread::sleep_for(milliseconds(1));
  }
  return host.Acknowledged() >= enough;
}

/// Kills one host after a time; every second one has another beside it, which must go on until it is killed as well.
Findings Kill(Store& store, int number, milliseconds life) {
  std::optional<Host> other;
  if (number % 2 == 0) {
    other.emplace(store.folder.path, "other" + std::to_string(number), 2 * longEnough);
  }
  Host host(store.folder.path, "host" + std::to_string(number), longEnough);
  std::this_thread::sleep_for(life);
  Findings findings;
  if (!host.Kill()) {
    findings += {0, 0, 1, "the host ended by itself\n"};
  }
  store.Add(host.told);
  if (other) {
    if (!GoesOn(*other) || !other->Kill()) {
      findings += {0, 0, 1, "the other host does not go on\n"};
    }
    other->Kill();
    store.Add(other->told);
  }
  return findings += Compare(store.folder.path, store.told);
}

bool KillMany(int kills, unsigned seed) {
  std::cout << "Killing a host while it records, " << kills << " times (seed " << seed << ")" << std::endl;
  std::mt19937 random(seed);
  std::uniform_int_distribution<long> life(0, longestLife.count());
  auto store = std::make_unique<Store>();
  Findings all;
  std::size_t records = 0;
  std::size_t cutShort = 0;
  for (int number = 1; number <= kills; ++number) {
    const Findings findings = Kill(*store, number, milliseconds(life(random)));
    all += findings;
    if (number % killsOfOneStore == 0 || number == kills || !findings.text.empty()) {
      records += store->told.acknowledged.size();
      cutShort += store->told.announced.size() - store->told.acknowledged.size();
      store = std::make_unique<Store>();
    }
  }
  std::cerr << all.text;
  std::cout << records << " records were acknowledged; " << cutShort
            << " kills came between announcing a record and its acknowledgement\n"
            << kills << " kills: " << all.lost << " acknowledged records lost, " << all.half << " records incomplete, "
            << all.damaged << " stores damaged\n";
  return all.text.empty();
}

/// What hosts made that recorded into one file.
struct Together {
  Findings findings;
  std::vector<std::size_t> records;  // of each host, from the fewest on
  int failed = 0;
  double longestCall = 0;    // in seconds
  double processorTime = 0;  // for each record after the first of its host, in milliseconds
};

Together RecordTogether(int count, int seconds) {
  Store store;
  std::deque<Host> hosts;
  for (int number = 0; number < count; ++number) {
    hosts.emplace_back(store.folder.path, "host" + std::to_string(number), seconds, "ready");
  }
  for (const Host& host : hosts) {
    host.AwaitReady();
  }
  for (const Host& host : hosts) {
    host.Begin();  // so that none records alone before the others are there
  }
  Together result;
  for (Host& host : hosts) {
    result.failed += host.Finish() ? 0 : 1;
    result.records.push_back(host.Acknowledged());
    result.longestCall = std::max(result.longestCall, host.LongestCall());
    result.processorTime += host.ProcessorTime();
    store.Add(host.told);
  }
  std::sort(result.records.begin(), result.records.end());
  const std::size_t total = store.told.acknowledged.size();
  result.processorTime *= 1e3 / static_cast<double>(std::max<std::size_t>(total - hosts.size(), 1));
  result.findings = Compare(store.folder.path, store.told);
  std::cerr << result.findings.text;
  std::cout << "Hosts into one file for " << seconds << " s: " << count << "\n  records: " << total << ", "
            << result.records.front() << " to " << result.records.back() << " by each; " << result.findings.lost
            << " lost, " << result.findings.half << " incomplete, " << result.failed
            << " hosts failed\n  longest call: " << result.longestCall
            << " s; processor time of a record: " << result.processorTime << " ms" << std::endl;
  return result;
}

/// Whether hosts lose nothing, take turns, and use no processor while they wait: one alone does not wait.
bool TakeTurns(int count, int seconds) {
  const Together alone = RecordTogether(1, 1);
  const Together together = RecordTogether(count, seconds);
  return alone.failed + together.failed == 0 && (alone.findings.text + together.findings.text).empty() &&
         together.records.front() > together.records.back() / 4 && together.processorTime < 5 * alone.processorTime;
}

}  // namespace

int main(int count, char** arguments) {
  Velora::CommandLine::Program program("Kills hosts while they record, and looks at what they leave");
  auto options = program.Own();
  long long kills = 0;
  long long seconds = 0;
  long long hosts = 2;
  long long seed = std::random_device()();
  options.AddCount("KILLS", kills, "How many hosts are killed");
  options.AddCount("--seed", seed, "Where the moments of the kills come from");
  options.AddCount("--together", seconds, "Let hosts record for so many seconds instead");
  options.AddCount("--hosts", hosts, "How many of them");
  options.Exclude("--together", "KILLS");
  options.Require("--hosts", "--together");
  if (const std::optional<bool> helped = program.Read({arguments, arguments + count})) {
    return *helped ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  const bool right = seconds > 0 ? TakeTurns(static_cast<int>(hosts), static_cast<int>(seconds))
                                 : KillMany(static_cast<int>(kills), static_cast<unsigned>(seed));
  return right ? EXIT_SUCCESS : EXIT_FAILURE;
}
