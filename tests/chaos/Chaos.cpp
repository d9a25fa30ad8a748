// chaos [--seed N] SECONDS: three instruments record into files, each with a forwarder; another host records into the
// facility's store directly. For that long, one fault after the other happens, chosen by chance. Then all settles, and
// each store is compared with what the hosts were told, and the facility's store with each file.

#include "Facility.h"
#include "durability/Comparison.h"
#include "durability/Host.h"
#include "durability/Recording.h"
#include "support/Program.h"
#include "support/Query.h"
#include "support/ScratchFolder.h"
#include "support/TestStore.h"

#include <VeloraCommandLine/Program.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <sstream>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int longEnough = 100'000;  // seconds

int Shell(const std::string& command) {
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Add(Told& told, const Told& more) {
  told.announced.insert(more.announced.begin(), more.announced.end());
  told.acknowledged.insert(more.acknowledged.begin(), more.acknowledged.end());
}

/// A folder in which one host after the other records, each until it is killed.
class Place {
 public:
  Place(const std::filesystem::path& folder, const std::string& database) : folder(folder) {
    PrepareFolder(folder, database);
    BeginHost();
  }

  void BeginHost() {
    host =
        std::make_unique<Host>(folder, folder.filename().string() + "-" + std::to_string(++hosts), longEnough, "calm");
  }
  /// @return whether the host had not ended by itself.
  bool KillHost() {
    const bool killed = host->Kill();
    Add(told, host->told);
    errors += host->errors.size();
    return killed;
  }

  const std::filesystem::path folder;
  std::unique_ptr<Host> host;
  Told told;
  std::size_t errors = 0;
  int hosts = 0;
};

/// A place with a file and its forwarder.
class Instrument : public Place {
 public:
  Instrument(const std::filesystem::path& folder, const std::string& facility)
      : Place(folder, "Backend='sqlite3' Connection='ts.db'/><Forward Connection='" + facility + "'") {
    BeginForwarder();
  }
  void BeginForwarder() { forwarder = std::make_unique<Program>(Verb("forward --follow"), folder / "forwarder.log"); }
  std::string Verb(const std::string& verb) const {
    return "'" VELORA_TS "' " + verb + " --config '" + folder.string() + "'";
  }

  std::unique_ptr<Program> forwarder;
};

class Chaos {
 public:
  explicit Chaos(unsigned seed) : random(seed) {
    permissions(folder.path, std::filesystem::perms{0711});  // who runs the servers passes through
    facility = std::make_unique<Facility>(folder.path);
    PrepareReader();
    Expect(Shell("'" VELORA_TS "' prepare --config '" + (folder / "facility").string() + "'") == 0 ? "" : "prepare");
    direct =
        std::make_unique<Place>(folder / "direct", "Backend='postgresql' Connection='" + facility->Address() + "'");
    for (std::size_t number = 0; number < instruments.size(); ++number) {
      instruments[number] =
          std::make_unique<Instrument>(folder / ("scope" + std::to_string(number)), facility->Address());
    }
  }

  void Reign(std::chrono::seconds time) {
    const steady_clock::time_point end = steady_clock::now() + time;
    while (steady_clock::now() < end) {
      Pause(200, 1200);
      Strike();
    }
  }

  /// @return whether nothing was lost but what may be.
  bool Judge() {
    Settle();
    PrepareReader();
    Told forwarded;
    Records inFiles;
    for (const auto& instrument : instruments) {
      Expect(Compare(instrument->folder, instrument->told).text);
      Add(forwarded, instrument->told);
      inFiles.merge(StoredRecords(instrument->folder / "ts.db"));
      CompareRuns(*instrument);
    }
    Velora::Store::PostgreSqlConnection sql(facility->PrimaryAddress());
    const Records there = StoredRecords(sql);
    Told all = direct->told;
    Add(all, forwarded);
    const Findings ofForwarded = CompareRecords(there, {all.announced, inFiles});
    Expect(ofForwarded.text);
    const Findings ofDirect = CompareRecords(there, {all.announced, direct->told.acknowledged});
    if (lossesAllowed == 0) {
      Expect(ofDirect.text);
    }
    if (Shell("timeout 300 '" VELORA_TS "' verify --config '" + (folder / "facility").string() + "'" + anchors +
              " > '" + Said() + "' 2>&1") != 4) {  // what the facility recorded itself is not sealed
      Expect("verify: " + ContentOf(Said()));
    }
    std::cout << "Into files: " << forwarded.acknowledged.size() << " records were acknowledged; " << inFiles.size()
              << " are there, and " << inFiles.size() - ofForwarded.lost
              << " at the facility\nDirectly: " << direct->told.acknowledged.size() << " were acknowledged, "
              << direct->errors << " raised an error, " << ofDirect.lost
              << " went with a lost server\nSame export on both sides: " << runs << " runs\n"
              << findings;
    return findings.empty();
  }

 private:
  long Between(long least, long most) { return std::uniform_int_distribution<long>(least, most)(random); }
  void Pause(long least, long most) { std::this_thread::sleep_for(milliseconds(Between(least, most))); }
  std::string Said() const { return (folder / "said").string(); }
  /// So that the verbs find the server that is the primary now.
  void PrepareReader() const {
    PrepareFolder(folder / "facility", "Backend='postgresql' Connection='" + facility->PrimaryAddress() + "'");
  }
  void Expect(const std::string& finding) { findings += finding.empty() ? "" : "finding: " + finding + '\n'; }
  void Say(const std::string& what) const {
    std::cout << std::chrono::duration_cast<milliseconds>(steady_clock::now() - start).count() << " ms: " << what
              << std::endl;
  }

  void Strike() {
    Instrument& one = *instruments[static_cast<std::size_t>(Between(0, 2))];
    switch (Between(0, 11)) {
      case 0:
      case 1:
        return KillHost(one);
      case 2:
        return KillHost(*direct);
      case 3:
      case 4:
        return KillForwarder(one);
      case 5:
        return Stop(*one.host, "host", one);
      case 6:
        return Stop(*one.forwarder, "forwarder", one);
      case 7:
        Say("the network stalls");
        facility->Stall(true);
        Pause(200, 4000);
        return facility->Stall(false);
      case 8:
        Say("a process of the server is killed");
        return facility->KillProcess();
      case 9:
        Say("the server crashes");
        return facility->Crash();
      case 10:
        Say("the server is lost, and its standby promoted");
        ++lossesAllowed;
        return facility->FailOver();
      default:
        return BackUpOrRestore();
    }
  }
  void KillHost(Place& place) {
    Say("a host of " + place.folder.filename().string() + " is killed");
    Expect(place.KillHost() ? "" : "a host ended by itself");
    place.BeginHost();
  }
  void KillForwarder(Instrument& instrument) {
    Say("the forwarder of " + instrument.folder.filename().string() + " is killed");
    if (!instrument.forwarder->Kill()) {
      Expect("a forwarder ended by itself: " + ContentOf(instrument.folder / "forwarder.log"));
    }
    instrument.BeginForwarder();
  }
  template <typename Stopped>
  void Stop(const Stopped& process, const std::string& what, const Place& place) {
    Say("the " + what + " of " + place.folder.filename().string() + " is stopped for a while");
    process.Signal(SIGSTOP);
    Pause(200, 3000);
    process.Signal(SIGCONT);
  }
  void BackUpOrRestore() {
    if (facility->Restore()) {
      ++lossesAllowed;
      return Say("the server was restored from a backup");
    }
    Say("the server is backed up");
    facility->BackUp();
  }

  void Settle() {
    Say("all settles");
    Expect(direct->KillHost() ? "" : "the host at the facility ended by itself");
    for (const auto& instrument : instruments) {
      Expect(instrument->KillHost() ? "" : "a host ended by itself");
      KillForwarder(*instrument);
      instrument->forwarder->Kill();
      const std::string anchor = (instrument->folder / "anchor").string();
      anchors += " --anchor '" + anchor + "'";
      const int sealed =
          Shell("timeout 100 " + instrument->Verb("seal --anchor '" + anchor + "'") + " > '" + Said() + "' 2>&1");
      if (sealed != 0 && sealed != 4) {  // what is not finished is not sealed
        Expect("seal: " + ContentOf(Said()));
      }
      Forward(*instrument);
    }
  }

  /// The server can still hold the lock of a forwarder that was killed.
  void Forward(const Instrument& instrument) {
    for (int tries = 0; Shell("timeout 300 " + instrument.Verb("forward") + " > '" + Said() + "' 2>&1") != 0; ++tries) {
      if (tries == 60 || ContentOf(Said()).find("another program adds records") == std::string::npos) {
        return Expect("forward: " + ContentOf(Said()));
      }
      std::this_thread::sleep_for(std::chrono::seconds(1));
    }
  }

  /// Whether each run of an instrument has the same export there and at the facility.
  void CompareRuns(const Instrument& instrument) {
    std::istringstream guids(
        Query(*TestStore(instrument.folder / "ts.db").Open(), "SELECT guid FROM executions WHERE parent_id IS NULL"));
    for (std::string guid; std::getline(guids, guid); ++runs) {
      const auto exported = [&](const std::filesystem::path& where) {
        return "timeout 100 '" VELORA_TS "' export " + guid + " --config '" + where.string() + "' > '" +
               (where / "exported").string() + "'";
      };
      if (Shell(exported(instrument.folder) + " && " + exported(folder / "facility") + " && cmp '" +
                (instrument.folder / "exported").string() + "' '" + (folder / "facility/exported").string() + "'") !=
          0) {
        Expect("run " + guid + " of " + instrument.folder.filename().string() + " differs");
      }
    }
  }

  const ScratchFolder folder;
  const steady_clock::time_point start = steady_clock::now();
  std::mt19937 random;
  std::unique_ptr<Facility> facility;
  std::unique_ptr<Place> direct;
  std::array<std::unique_ptr<Instrument>, 3> instruments;
  int lossesAllowed = 0;  // how often a server was lost, with what its standby or backup did not have
  int runs = 0;
  std::string anchors;
  std::string findings;
};

}  // namespace

int main(int count, char** arguments) {
  Velora::CommandLine::Program program("Lets faults of all kinds happen to hosts, forwarders and servers");
  auto options = program.Own();
  long long seconds = 0;
  long long seed = std::random_device()();
  options.AddCount("SECONDS", seconds, "For how long");
  options.AddCount("--seed", seed, "Where the faults come from");
  if (const std::optional<bool> helped = program.Read({arguments, arguments + count})) {
    return *helped ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  std::cout << "Chaos for " << seconds << " s (seed " << seed << ")" << std::endl;
  try {
    Chaos chaos(static_cast<unsigned>(seed));
    chaos.Reign(std::chrono::seconds(seconds));
    return chaos.Judge() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
