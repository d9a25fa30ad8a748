// night-run FOLDER: records a run of six hours into the store that FOLDER/TSAL.config names, with stated times, and its
// log into FOLDER/night.log. At its last event, an Error, it kills itself.

#include "store/settings/Settings.h"
#include "store/values/StoredTime.h"

#include <TSAL/Methods.h>
#include <VeloraCommandLine/Options.h>
#include <VeloraCommandLine/Program.h>

#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Quor::TolvaServices;
using Types::ActivityExecution;
using Types::DateTimeOffset;
using Parameter = std::shared_ptr<Types::InstrumentParameterBase>;

constexpr long long second = 1'000'000;  // microseconds
constexpr long long night = second * 3600 * 6;

struct NightOptions {
  std::string folder = ".";
  bool finish = false;
  long long events = 20000;
  long long seed = 1;
  std::string start;
  std::vector<std::string> changes;
};

std::string Decimal(double value, int digits) {
  std::array<char, 32> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", digits, value));
  return text.data();
}

/// A time in the form of the default logger.
std::string LocalTime(long long microseconds) {
  const std::time_t seconds = microseconds / second;
  std::tm local{};
  static_cast<void>(localtime_r(&seconds, &local));
  std::array<char, 64> text{}, fraction{};
  static_cast<void>(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local));
  static_cast<void>(std::snprintf(fraction.data(), fraction.size(), ".%06lld%c%02ld:%02ld", microseconds % second,
                                  local.tm_gmtoff < 0 ? '-' : '+', std::labs(local.tm_gmtoff) / 3600,
                                  std::labs(local.tm_gmtoff) / 60 % 60));
  return text.data() + std::string(fraction.data());
}

class Night {
 public:
  explicit Night(NightOptions given)
      : options(std::move(given)),
        changes(options.changes.begin(), options.changes.end()),
        now((options.start.empty() ? Velora::Store::Now().time_since_epoch().count() - night
                                   : Velora::Store::Microseconds(options.start).value())),
        log(options.folder + "/night.log") {
    const std::string activities = options.folder + "/night-activities.xml";
    std::ofstream(activities) << "<Activities><Activity Name='Data acquisition'>"
                                 "<ActivityVersion Name='Session' Version='1.0'/>"
                                 "<ActivityVersion Name='Grid' Version='1.0'/>"
                                 "<ActivityVersion Name='Square' Version='1.0'/>"
                                 "<ActivityVersion Name='Hole' Version='"
                              << (Changed("version") ? "2.1" : "2.0") << "'/></Activity></Activities>";
    Types::TSInstance::SetTsalPath(options.folder);
    Types::TSInstance::BeginSession();
    versions = Methods::ActivityMethods::RegisterAndGetActivityVersions(activities, Types::SessionHandle::Empty);
    const std::string instrument = Velora::Store::ReadSettings(options.folder).instrument;
    configuration = Methods::SystemMethods::SaveInstrumentConfigWithResult(
        std::string("Voltage=300\nSpotSize=") + (Changed("configuration") ? "6" : "5") + "\nCamera=left port\n", "",
        "Brantor Scientific", instrument, "", "TEM", "Veldmar 3", "", "");
  }

  /// Holes of 17 to 22 events each, 25 in a square, and 14 squares in a grid.
  void Record() {
    const long long holes = options.events / 16;  // more than the events take
    const ActivityExecution session = Begin(nullptr, "Session", "specimen 12", "screening over night");
    for (long long hole = 1, grid = 1; hole <= holes; ++grid) {
      const ActivityExecution atGrid = Begin(&session, "Grid", "grid " + std::to_string(grid), "");
      for (int square = 1; square <= 14 && hole <= holes; ++square, hole += 25) {
        if (!Changed("square") || grid != 1 || square != 3) {
          RecordSquare(atGrid, square, hole, std::min(holes, hole + 24));
        }
      }
      End(atGrid);
    }
    End(session);
  }

 private:
  bool Changed(const char* what) const { return changes.count(what) > 0; }

  void RecordSquare(const ActivityExecution& grid, int square, long long from, long long to) {
    const ActivityExecution atSquare = Begin(&grid, "Square", "square " + std::to_string(square), "");
    for (long long hole = from; hole <= to; ++hole) {
      const std::string node = "hole " + std::to_string(hole - from + 1);
      RecordHole(atSquare, node, hole);
      if (Changed("hole") && hole == 30) {
        RecordHole(atSquare, node, hole);
      }
    }
    End(atSquare);
  }

  void RecordHole(const ActivityExecution& square, const std::string& node, long long hole) {
    const ActivityExecution at = Begin(&square, "Hole", node, "");
    const long long row = hole / 25;
    const double x = 12.5 + 0.75 * static_cast<double>(hole - 25 * row), y = -7.25 - 0.5 * static_cast<double>(row);
    position = Decimal(x, 3) + " " + Decimal(y, 3);
    Save(at, "Stage moved", {Double("StageX", x), Double("StageY", y)});
    const double score = 0.75 + 0.002 * static_cast<double>(hole % 7) + Noise(0.01);
    for (int again = hole % 60 == 0 ? 1 : 0; again >= 0; --again) {
      Save(at, "Focused", {Double("Defocus", -1.5 + Noise(0.02)), Double("FocusScore", again ? 0.41 : score)});
      if (again > 0) {
        Log("warning", "focus score 0.41 is below 0.5 at " + node + "; focusing again");
      }
    }
    for (int image = 1; image <= 14 + hole % 5; ++image) {
      const double dose = Changed("dose") && hole > 75 ? 41.5 : 40;
      Save(
          at, "Image",
          {Double("Defocus", -1.5 - 0.1 * (image % 5) + Noise(0.02)), Double("Dose", dose), Double("FocusScore", score),
           Text("File", "hole-" + std::to_string(hole) + "-" + std::to_string(image) + ".tiff"),
           Text("DateTime", LocalTime(now).substr(0, 19))});
    }
    Save(at, "Hole done",
         {std::make_shared<Types::InstrumentParameterInt>("Images", static_cast<int>(14 + hole % 5)),
          std::make_shared<Types::InstrumentParameterBoolean>("Accepted", hole % 9 != 0)});
    End(at);
  }

  ActivityExecution Begin(const ActivityExecution* parent, const std::string& activity, const std::string& node,
                          const std::string& description) {
    ActivityExecution made;
    made.Parent = parent;
    made.ActivityVersion = versions.at(activity);
    made.Node = node;
    made.Description = description;
    SaveStatus(made, Types::Enums::ActivityExecStatus::Running);
    return made;
  }
  void End(ActivityExecution ended) { SaveStatus(ended, Types::Enums::ActivityExecStatus::Done); }
  void SaveStatus(ActivityExecution& execution, Types::Enums::ActivityExecStatus status) {
    execution.Status = {status, DateTimeOffset::FromMicroseconds(now)};
    Methods::ActivityMethods::SaveActivityExecution(execution, Types::SessionHandle::Empty);
  }

  void Save(const ActivityExecution& execution, const std::string& name, const std::vector<Parameter>& parameters) {
    now += night / options.events;
    if (++saved == options.events && !options.finish) {
      Die(execution);
    }
    if (saved == options.events - 150 && !options.finish) {
      Log("warning", "nitrogen of the stage is at 11 percent; expected 20 or more");
    }
    Log("info", "Create instrument event with name: \"" + name + '"', 3);
    for (const Parameter& parameter : parameters) {
      Log("info", "Add instrument event parameter. node: \"" + name + "\", parameter: \"" + parameter->Name + '"', 3);
    }
    Log("info", "Save instrument event. node: \"" + name + '"', 3);
    SaveEvent(execution, name, parameters);
  }
  void SaveEvent(const ActivityExecution& execution, const std::string& name,
                 const std::vector<Parameter>& parameters) {
    Types::InstrumentEvent event;
    event.Name = name;
    event.TimeStamp = DateTimeOffset::FromMicroseconds(now);
    event.Parameters = parameters;
    Methods::LoggingMethods::SaveEvent(event, configuration.ConfigurationId, &execution.Id, false,
                                       Types::SessionHandle::Empty);
  }
  [[noreturn]] void Die(const ActivityExecution& execution) {
    Log("warning", "stage drifts by 3.2 nm/s; expected less than 0.5");
    SaveEvent(execution, "Error",
              {Text("Message", "stage did not reach its position within 30 s"),
               std::make_shared<Types::InstrumentParameterInt>("Code", 4117), Text("Position", position)});
    Log("error", "stage did not reach " + position + " within 30 s (4117)");
    log.flush();
    static_cast<void>(std::raise(SIGKILL));
    std::abort();
  }

  void Log(const char* level, const std::string& message, int times = 1) {
    for (; times > 0; --times) {
      log << LocalTime(now) << " [" << level << "] [Acquisition] " << message << '\n';
    }
  }

  static Parameter Double(const char* name, double value) {
    return std::make_shared<Types::InstrumentParameterDouble>(name, value);
  }
  static Parameter Text(const char* name, const std::string& value) {
    return std::make_shared<Types::InstrumentParameterString>(name, value);
  }
  /// What differs from seed to seed, from -size to size.
  double Noise(double size) {
    return size * std::sin(static_cast<double>(options.seed) * 1000.0 + 0.7 * static_cast<double>(saved));
  }

  const NightOptions options;
  const std::set<std::string> changes;
  long long now;
  std::ofstream log;
  std::map<std::string, Types::ActivityVersion> versions;
  Types::InstrumentEventConfigResult configuration;
  std::string position;
  long long saved = 0;
};

}  // namespace

int main(int count, char** arguments) try {
  NightOptions options;
  Velora::CommandLine::Program program("Records a run of six hours that is killed at its last event, an Error.");
  Velora::CommandLine::Options line = program.Own();
  line.AddRequiredText("FOLDER", options.folder, "Folder with TSAL.config; it gets night.log too");
  line.AddFlag("--finish", options.finish, "No Error: everything ends");
  line.AddCount("--events", options.events, "Number of the event that is the Error");
  line.AddCount("--seed", options.seed, "Another number gives slightly different values");
  line.AddText("--start", options.start, "When it begins, in UTC. Default: six hours ago");
  line.AddList("--changes", options.changes,
               "Differences: hole (hole 5 of square 2 is repeated), square (square 3 of grid 1 is left out), version "
               "(of Hole), dose (from square 4 on), configuration (of the instrument)");
  if (const std::optional<bool> ended = program.Read({arguments, arguments + count})) {
    return *ended ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  Night(options).Record();
} catch (const std::exception& reason) {
  std::cerr << "night-run: " << reason.what() << '\n';
  return EXIT_FAILURE;
}
