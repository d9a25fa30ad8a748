#pragma once

#include "durability/OnServer.h"
#include "store/database/PostgreSqlConnection.h"
#include "support/Proxy.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

/// The servers of a facility: a primary and a standby, each behind a network that can stall, and a backup.
class Facility {
 public:
  explicit Facility(const std::filesystem::path& folder)
      : folder(folder), primary(Made("start")), standby(Made("standby", primary)) {
    Sql(std::string("CREATE SCHEMA ts; ") + forComparison);
  }
  Facility(const Facility&) = delete;
  Facility& operator=(const Facility&) = delete;
  ~Facility() {
    for (const auto& server : {primary, standby, backup}) {
      Run("stop", server);
    }
  }

  /// For hosts and forwarders.
  std::string Address() const {
    return "host=" + (folder / "network0").string() + "," + (folder / "network1").string() +
           " target_session_attrs=read-write " + others;
  }
  /// Past the network.
  std::string PrimaryAddress() const { return "host=" + primary.string() + " " + others; }
  std::string Sql(const std::string& statements) const {
    Velora::Store::PostgreSqlConnection sql(PrimaryAddress());
    const auto answer = sql.Ask(statements);
    return PQntuples(answer.get()) == 0 ? "" : PQgetvalue(answer.get(), 0, 0);
  }

  void Stall(bool stalls) {
    network0.stalls = stalls;
    network1.stalls = stalls;
  }
  /// Ends the primary at once, and starts it again.
  void Crash() const {
    Run("crash", primary);
    Run("resume", primary);
  }
  /// Kills a process of the primary, which ends all connections then, and waits until it has recovered.
  void KillProcess() const {
    const std::string process =
        "SELECT pid FROM pg_stat_activity ORDER BY backend_type = 'client backend' DESC, random()";
    kill(std::stoi(Sql(process)), SIGKILL);
    Await();
  }
  /// Loses the primary, and promotes the standby.
  void FailOver() {
    Run("crash", primary);
    Run("promote", standby);
    std::swap(primary, standby);
    ReplaceStandby();
  }
  void BackUp() {
    Run("stop", backup);
    backup = Made("copy", primary);
    Run("crash", backup);
  }
  /// Loses both servers, and continues with the backup. @return whether there was one.
  bool Restore() {
    if (backup.empty()) {
      return false;
    }
    Run("stop", primary);
    primary = std::exchange(backup, "");
    Run("resume", primary);
    ReplaceStandby();
    return true;
  }

 private:
  void Await() const {
    for (int tries = 0;; ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      try {
        Sql("SELECT 1");
        return;
      } catch (const Velora::Store::DatabaseError&) {
        if (tries == 300) {
          throw;
        }
      }
    }
  }
  static void Run(const std::string& verb, const std::filesystem::path& server, const std::filesystem::path& of = "") {
    const std::string command =
        "timeout 100 '" SCRIPTS "/postgresql' " + verb + " '" + server.string() + "' '" + of.string() + "'";
    if (!server.empty() && std::system(command.c_str()) != 0) {
      throw std::runtime_error("'" + command + "' fails");
    }
  }
  std::filesystem::path Made(const std::string& how, const std::filesystem::path& of = "") {
    const std::filesystem::path server = folder / ("server" + std::to_string(++servers));
    Run(how, server, of);
    return server;
  }
  void ReplaceStandby() {
    Run("stop", standby);
    standby = Made("standby", primary);
    network0.LeadTo(primary);
    network1.LeadTo(standby);
  }

  static constexpr const char* others = "user=velora dbname=postgres options=-csearch_path=ts,public";
  const std::filesystem::path folder;
  int servers = 0;
  std::filesystem::path primary;
  std::filesystem::path standby;
  std::filesystem::path backup;
  Proxy network0{folder / "network0", primary};
  Proxy network1{folder / "network1", standby};
};
