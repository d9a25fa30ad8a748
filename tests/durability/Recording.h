#pragma once

#include <TSAL/Methods.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

/// Makes a folder in which hosts can record into "ts.db".
inline void PrepareFolder(const std::filesystem::path& folder,
                          const std::string& database = "Backend='sqlite3' Connection='ts.db'") {
  create_directories(folder);
  std::ofstream(folder / "TSAL.config") << "<TSAL><Database " << database << "/></TSAL>";
  std::ofstream(folder / "activities.xml") << "<Activities><Activity Name='Tilt'><ActivityVersion Name='Expose' "
                                              "Version='1'/><ActivityVersion Name='Focus' Version='1'/>"
                                              "</Activity></Activities>";
}

/// A host that records through TSAL: a session, a registration, then executions, events, status updates and
/// configurations in turn. Each record is announced before it is saved and acknowledged after it, by one line of text
/// that holds everything of it, as StoredRecords (in Comparison.h) reads it from the store.
class Recording {
 public:
  using Tell = std::function<void(const std::string& record)>;

  /// @param host a name that no other host of this store has.
  Recording(std::filesystem::path folder, std::string host, Tell announced, Tell acknowledged)
      : folder(std::move(folder)),
        host(std::move(host)),
        announced(std::move(announced)),
        acknowledged(std::move(acknowledged)) {}

  /// Saves the next record; the same one again when the last call raised.
  void Next() {
    const int round = step / 4;
    const std::string node = host + "-" + std::to_string(round);
    switch (step < 0 ? step : step % 4) {
      case -2:
        return SaveSession();
      case -1:
        return SaveRegistration();
      case 0:
        return SaveExecution(node, round);
      case 1:
        return SaveEvent(node, round);
      case 2:
        return SaveStatus(node);
      default:
        return SaveConfiguration(node);
    }
  }

 private:
  using Session = Quor::TolvaServices::Types::SessionHandle;
  using Status = Quor::TolvaServices::Types::Enums::ActivityExecStatus;
  using Time = Quor::TolvaServices::Types::DateTimeOffset;
  using Activities = Quor::TolvaServices::Methods::ActivityMethods;

  template <typename Action>
  void Save(const std::string& record, Action action) {
    announced(record);
    action();
    acknowledged(record);
    ++step;
  }

  void SaveSession() {
    using Quor::TolvaServices::Types::TSInstance;
    TSInstance::SetTsalPath(folder.string());
    Save("session " + host, [this] { TSInstance::BeginSession(host, "", ""); });
  }
  void SaveRegistration() {
    Save("registration " + host + " Expose,Focus", [this] {
      version = Activities::RegisterAndGetActivityVersions(folder / "activities.xml", Session::Empty).at("Expose");
    });
  }
  void SaveExecution(const std::string& node, int round) {
    Save("execution " + node + " Expose under " + (round == 0 ? "none" : first.Node) + " 4", [&] {
      execution = {};
      execution.Node = node;
      execution.ActivityVersion = version;
      execution.Parent = round == 0 ? nullptr : &first;
      execution.Status = {Status::Running, Time::Now()};
      Activities::SaveActivityExecution(execution, Session::Empty);
      first = round == 0 ? execution : first;
    });
  }
  void SaveEvent(const std::string& node, int round) {
    using Quor::TolvaServices::Methods::LoggingMethods;
    const auto [text, event] = Event(node, round);
    Save(text, [this, saved = event] {
      LoggingMethods::SaveEvent(saved, configuration, &execution.Id, false, Session::Empty);
    });
  }
  void SaveStatus(const std::string& node) {
    Save("status " + node + " 14", [this] {
      execution.Status = {Status::Done, Time::Now()};
      Activities::SaveActivityExecution(execution, Session::Empty);
    });
  }
  void SaveConfiguration(const std::string& node) {
    using Quor::TolvaServices::Methods::SystemMethods;
    Save("configuration " + node, [&] {
      configuration =
          SystemMethods::SaveInstrumentConfigWithResult(node, "", "", "", "", "", "", "", "").ConfigurationId;
    });
  }

  static std::pair<std::string, Quor::TolvaServices::Types::InstrumentEvent> Event(const std::string& node, int round) {
    using namespace Quor::TolvaServices::Types;
    const auto length = static_cast<std::size_t>(round * 37 % 3000);
    InstrumentEvent event;
    event.Name = node;
    event.Parameters = {std::make_shared<InstrumentParameterString>("note", std::string(length, 'x')),
                        std::make_shared<InstrumentParameterInt>("shot", round),
                        std::make_shared<InstrumentParameterDouble>("angle", round + 0.5),
                        std::make_shared<InstrumentParameterBoolean>("good", round % 2 == 0)};
    event.Parameters.resize(static_cast<std::size_t>(1 + round % 4));
    std::ostringstream text;
    text << "event " << node << " of " << node << ": ";
    const std::string values[] = {"note " + std::to_string(length) + " x", "shot " + std::to_string(round),
                                  "angle " + std::to_string(round) + ".5", round % 2 == 0 ? "good 1" : "good 0"};
    for (std::size_t at = 0; at < event.Parameters.size(); ++at) {
      text << (at == 0 ? "" : ", ") << at + 1 << ' ' << values[at];
    }
    return {text.str(), event};
  }

  const std::filesystem::path folder;
  const std::string host;
  const Tell announced;
  const Tell acknowledged;
  int step = -2;
  Quor::TolvaServices::Types::ActivityVersion version;
  Quor::TolvaServices::Types::ActivityExecution first;
  Quor::TolvaServices::Types::ActivityExecution execution;
  Quor::TolvaServices::Types::Tsid configuration;
};
