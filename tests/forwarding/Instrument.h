#pragma once

#include "store/database/Database.h"
#include "store/recording/Writer.h"
#include "store/schema/Tables.h"
#include "store/values/Guid.h"
#include "support/TestStore.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

/// An instrument with a store in a file, whose hosts record by chance: several runs at a time, events of any of them
/// and of none, also after the end.
class Instrument {
 public:
  explicit Instrument(std::filesystem::path path) : file(std::move(path)) {
    Velora::Store::OpenForWriting(Where());
    sql = OpenFile(file);
    sql->RunScript("PRAGMA foreign_keys = ON; PRAGMA synchronous = OFF");
    Add("activities", Quoted(Velora::Store::NewGuid()) + ", 'Tomography', ''");
    Add("activity_versions", Quoted(Velora::Store::NewGuid()) + ", 1, 'TiltSeries', '1.0', ''");
    BeginSession();
  }

  Velora::Store::Database Where() const { return {Velora::Store::Database::Kind::Sqlite, file.string()}; }

  void Record(int steps) {
    sql->RunScript("BEGIN IMMEDIATE");
    for (; steps > 0; --steps) {
      const int what = Chance(20);
      if (what < 10 || open.empty()) {
        Save(open.empty() || what == 0 ? "NULL" : std::to_string(open[At(open)]));
        what % 3 == 0 ? Begin() : void();
      } else if (what < 14) {
        Begin();
      } else if (what < 18) {
        End(At(open));
      } else if (what == 18 && !ended.empty()) {
        Save(std::to_string(ended[At(ended)]));
      } else {
        Chance(2) == 0 ? BeginSession() : Note();
      }
    }
    sql->RunScript("COMMIT");
  }
  void BeginRuns(int runs) {
    for (; runs > 0; --runs) {
      Begin();
    }
  }
  /// What looks to a forwarder as a seal of all that there is.
  void Seal() { Add("seals", "NULL, " + time + ", '{}', '{}', 'a', 'b', 3, '1.0', 'c'"); }

  void CopyTo(const std::filesystem::path& copy) {
    sql->RunScript("PRAGMA wal_checkpoint(TRUNCATE)");
    copy_file(file, copy);
  }
  /// Goes on in an older copy.
  void GoBackTo(const std::filesystem::path& copy) {
    sql = nullptr;
    rename(copy, file);
    sql = OpenFile(file);
    open.clear();
    ended.clear();
    BeginSession();
  }

  const std::filesystem::path file;
  SqlConnection sql;

 private:
  static std::string Quoted(const std::string& text) { return '\'' + text + '\''; }
  int Chance(int of) { return std::uniform_int_distribution<int>(0, of - 1)(chance); }
  std::size_t At(const std::vector<long long>& list) {
    return static_cast<std::size_t>(Chance(static_cast<int>(list.size())));
  }

  long long Add(const std::string& table, const std::string& values) {
    sql->RunScript("INSERT INTO " + table + " VALUES (NULL, " + values + ")");
    return sql->Find<long long>("SELECT last_insert_rowid()").value();
  }
  void BeginSession() {
    session = std::to_string(
        Add("sessions", Quoted(Velora::Store::NewGuid()) + ", 'Veldmar 3', 'host', " + time + ", '', '', ''"));
    sql->RunScript("INSERT INTO registrations VALUES (" + session + ", 1, 'a.xml', " + time + ")");
    configuration = std::to_string(Add("configurations", Quoted(Velora::Store::NewGuid()) + ", " + session + ", " +
                                                             time + ", 'Voltage=300', '', '', '', '', '', '', '', ''"));
  }
  void Begin() {
    const bool below = !open.empty() && Chance(3) > 0;
    const std::string parent = below ? std::to_string(open[At(open)]) : "NULL";
    const std::string root = below ? "(SELECT root_id FROM executions WHERE execution_id = " + parent + ")"
                                   : "(SELECT COALESCE(MAX(execution_id), 0) + 1 FROM executions)";
    open.push_back(Add("executions", Quoted(Velora::Store::NewGuid()) + ", " + parent + ", " + root + ", " + session +
                                         ", 1, 'n', '', 5, " + time));
    Add("statuses", std::to_string(open.back()) + ", " + session + ", 4, " + time);
  }
  void End(std::size_t at) {
    Add("statuses", std::to_string(open[at]) + ", " + session + ", 14, " + time);
    ended.push_back(open[at]);
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(at));
  }
  void Save(const std::string& execution) {
    const long long event = Add("events", session + ", " + execution + ", " + configuration + ", 'e', " + time);
    for (int position = Chance(4); position > 0; --position) {
      sql->Run("INSERT INTO parameters VALUES (?1, ?2, 'p', 'double', NULL, ?3)", event, position, event);
    }
  }
  void Note() {
    if (!ended.empty()) {
      Add("notes", "(SELECT root_id FROM executions WHERE execution_id = " + std::to_string(ended.back()) +
                       "), 'me', 'tag', 'good', " + time);
    }
  }

  const std::string time = "'2026-11-26T08:00:00.000000Z'";
  std::mt19937 chance{1};
  std::string session;
  std::string configuration;
  std::vector<long long> open;
  std::vector<long long> ended;
};
