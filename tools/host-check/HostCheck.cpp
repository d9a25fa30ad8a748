#include "host-check/HostCheck.h"

#include "host-check/LibraryOfHost.h"
#include "host-check/SettingsOfHost.h"
#include "store/recording/Trial.h"
#include "store/settings/ActivitiesFile.h"
#include "store/settings/Service.h"
#include "store/settings/WholeFile.h"
#include "store/values/StoredTime.h"

#include <VeloraSystem/Path.h>

#include <filesystem>

namespace Velora::HostCheck {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t littleRoom = 1'000'000'000;  // bytes, about what a long run with many parameters needs

std::string Megabytes(std::uintmax_t bytes) { return std::to_string(bytes / 1'000'000) + " MB"; }

class HostCheck {
 public:
  HostCheck(const HostStart& start, const std::function<void(const HostStep&)>& tell) : start(start), tell(tell) {}

  HostOutcome Run() {
    LoadComponent();
    AskForService();
    Try([this] {
      folder = FolderOfSettings(start);
      return "settings: TSAL.config and " + start.activities + " in '" + folder + "'";
    });
    if (!folder.empty()) {
      Try([this] { return ReadSettings(); });
      Try([this] { return ReadActivities(); });
      Try([this] { return ReadConfiguration(); });
    }
    if (outcome.settings) {
      Try([this] { return TryDatabase(); });
    }
    return outcome;
  }

 private:
  template <typename Work>
  void Try(const Work& work) {
    try {
      tell({HostStep::Outcome::Works, work()});
    } catch (const std::exception& reason) {
      Prevent(reason.what());
    }
  }
  void Prevent(const std::string& reason) {
    outcome.records = false;
    tell({HostStep::Outcome::Prevents, reason});
  }
  void Warn(const std::string& what) { tell({HostStep::Outcome::Warns, what}); }

  void LoadComponent() {
    if (start.library.empty()) {
      return Warn("there is no TS logging library beside this program; --library names that of the host");
    }
    const std::vector<std::string> reasons = start.isLoaded ? std::vector<std::string>() : WhyNotLoaded(start.library);
    for (const std::string& reason : reasons) {
      Prevent(reason);
    }
    if (reasons.empty()) {
      tell({HostStep::Outcome::Works, "library '" + start.library + "'"});
    }
  }

  void AskForService() {
    if (const std::string reason = Store::WhyServiceIsAbsent(); reason.empty()) {
      tell({HostStep::Outcome::Works, "service: present"});
    } else {
      Prevent(reason);
    }
  }

  std::string ReadSettings() {
    outcome.settings = Store::ReadSettings(folder);
    outcome.folder = folder;
    return "TSAL.config: instrument '" + outcome.settings->instrument + "'";
  }

  std::string ReadActivities() {
    std::string names;
    for (const auto& version : Store::ReadActivitiesFile(System::Joined(folder, start.activities))) {
      names += (names.empty() ? "" : ", ") + version.name + ' ' + version.version;
    }
    if (names.empty()) {
      Warn(start.activities + " defines no activity version; executions are recorded without one");
    }
    return start.activities + ": " + (names.empty() ? "none" : names);
  }

  std::string ReadConfiguration() {
    const std::size_t size = Store::ReadWholeFile(System::Joined(folder, start.configuration)).size();
    return start.configuration + ": " + std::to_string(size) + " bytes";
  }

  std::string TryDatabase() {
    const Store::Trial trial = Store::TryToRecord(*outcome.settings);
    outcome.hasStore = trial.version > 0;
    LookAtRoom();
    const std::string now = Store::ToStoredTime(Store::Now());
    if (!trial.newest.empty() && now < trial.newest) {
      Warn("the clock of this computer shows " + now + ", which is before the newest session of the store, " +
           trial.newest);
    }
    return "database: " + trial.words;
  }

  void LookAtRoom() {
    const Store::Database& database = outcome.settings->database;
    const std::string ofDatabase = Store::FolderOf(database);
    if (ofDatabase.empty()) {  // of a server, which Windows would not take for a path
      return;
    }
    std::error_code unknown;
    const fs::space_info space = fs::space(System::PathOf(ofDatabase), unknown);
    if (!unknown && space.available < littleRoom) {
      Warn("the disk of '" + database.where + "' has only " + Megabytes(space.available) + " left");
    }
  }

  const HostStart& start;
  const std::function<void(const HostStep&)>& tell;
  std::string folder;
  HostOutcome outcome;
};

}  // namespace

std::string InWords(const HostStep& step) {
  switch (step.outcome) {
    case HostStep::Outcome::Works:
      return "ok: " + step.words;
    case HostStep::Outcome::Warns:
      return "warning: " + step.words;
    default:
      return "finding: " + step.words;
  }
}

HostOutcome CheckHost(const HostStart& start, const std::function<void(const HostStep&)>& tell) {
  return HostCheck(start, tell).Run();
}

}  // namespace Velora::HostCheck
