#include "Connection.h"
#include "Schema.h"
#include "Statement.h"
#include "copying/RowWriter.h"
#include "copying/StoredTables.h"
#include "output/Output.h"
#include "output/Progress.h"
#include "reading/Rows.h"
#include "reading/Runs.h"
#include "reading/SettledStore.h"
#include "reading/Store.h"
#include "records/Records.h"
#include "records/Seals.h"
#include "records/Sha256.h"
#include "soundness/Soundness.h"
#include "verbs/Verb.h"

#include <TSAL/Error.h>

#include <optional>

namespace Velora::Ts {

namespace Local = Quor::TolvaServices::Local;
using Quor::TolvaServices::TsError;

namespace {

constexpr int rowsInATransaction = 5000;
constexpr long long keysInAMonth = 10'000'000'000;  // docs/postgresql.md
constexpr long long firstMonth = 200001;

/// Everything of a store up to some numbers, in its canonical form.
struct Content {
  Numbers counts{};
  std::string hash;

  bool operator==(const Content&) const = default;
};

Content ContentOf(const Store& store, const Numbers& upTo, Progress& progress) {
  Content content;
  Sha256 sha;
  Records records(store, upTo, [&](std::string_view line) {
    sha.Add(line);
    progress.Add(1);
  });
  const auto count = [&] {
    for (std::size_t kind = 0; kind < content.counts.size(); ++kind) {
      content.counts[kind] += records.Counts()[kind];
    }
  };
  records.WriteRest();
  count();
  for (const Run& run : AllRuns(store)) {
    if (run.root <= upTo[Executions]) {
      records.WriteRun(run.root);
      count();
    }
  }
  content.hash = sha.Finish();
  return content;
}

/// The last row that a store has of a table up to a key, and how many there are; empty for none.
std::string EndOf(const Store& store, const StoredTable& table, long long key) {
  Rows count(store, "SELECT COUNT(*) FROM " + table.name + " WHERE " + table.Key() + " <= ?1");
  Rows last(store, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() + " = ?1");
  std::string end;
  if (count.Ask(key).Next() && last.Ask(key).Next()) {
    end = std::to_string(count.Integer(0)) + " rows, the last ";
    for (int column = 0; column < last.Columns(); ++column) {
      last.AppendValue(end, column);
    }
  }
  return end;
}

/// A target may have the first rows of what is copied, as an earlier copy left them, and no others.
void ExpectBeginning(const Store& from, const Store& to) {
  std::vector<StoredTable> tables = TablesBeforeEvents();
  tables.push_back(EventTable());
  for (const StoredTable& table : tables) {
    Rows highest(to, "SELECT MAX(" + table.Key() + ") FROM " + table.name);
    if (!highest.Next() || highest.IsNull(0)) {
      continue;
    }
    const long long key = highest.Integer(0);
    if (EndOf(from, table, key) != EndOf(to, table, key)) {
      throw TsError("'" + to.Name() + "' holds rows of " + table.name + " that are none of '" + from.Name() +
                    "'; expected an empty store, or an earlier copy of it");
    }
  }
}

class Copier {
 public:
  Copier(const Store& from, Local::Connection& to, const Local::Database& target)
      : from(from), to(to), onServer(target.kind == Local::Database::Kind::PostgreSql) {}

  // A store that was just made says when, which the copy is not to say: it has the history of what it is a copy of.
  void TakeOverHistory() {
    const std::string off =
        onServer ? "ALTER TABLE ts_schema DISABLE TRIGGER ts_schema_no_change" : "DROP TRIGGER ts_schema_no_delete";
    long long records = 0;
    long long versions = 0;
    Local::Execute(to.Sql(),
                   "SELECT (SELECT COUNT(*) FROM sessions) + (SELECT COUNT(*) FROM seals), COUNT(*) FROM ts_schema",
                   soci::into(records), soci::into(versions));
    if (records > 0 || versions != 1) {
      return;
    }
    std::string on = "ALTER TABLE ts_schema ENABLE TRIGGER ts_schema_no_change";
    if (!onServer) {
      Local::Execute(to.Sql(), "SELECT sql FROM sqlite_master WHERE name = 'ts_schema_no_delete'", soci::into(on));
    }
    Local::Transaction transaction(to);
    Local::Execute(to.Sql(), off);
    Local::Execute(to.Sql(), "DELETE FROM ts_schema");
    Local::Execute(to.Sql(), on);
    const StoredTable& history = TablesBeforeEvents().front();
    Insert(history, "SELECT " + history.ColumnList() + " FROM ts_schema ORDER BY rowid");
    transaction.Commit();
  }

  void Copy() {
    for (const StoredTable& table : TablesBeforeEvents()) {
      CopyRows(table);
    }
    CopyEvents();
    if (onServer) {
      SetSequences();
    }
  }

 private:
  void Insert(const StoredTable& table, const std::string& question) {
    const auto writer = MakeRowWriter(to, onServer, table);
    for (Rows rows(from, question); rows.Next();) {
      writer->Add(rows);
    }
    writer->Flush();
  }

  std::optional<long long> HighestKey(const StoredTable& table) {
    long long highest = 0;
    soci::indicator known = soci::i_null;
    Local::Execute(to.Sql(), "SELECT MAX(" + table.Key() + ") FROM " + table.name, soci::into(highest, known));
    return known == soci::i_ok ? std::optional(highest) : std::nullopt;
  }

  void CopyRows(const StoredTable& table) {
    Progress progress("Copying " + table.name, 0);
    const auto writer = MakeRowWriter(to, onServer, table);
    Rows rows(from, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() +
                        " > ?1 ORDER BY " + table.Key());
    rows.Ask(HighestKey(table).value_or(std::numeric_limits<long long>::min()));
    for (bool more = rows.Next(); more;) {
      Local::Transaction transaction(to);
      for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
        writer->Add(rows);
        progress.Add(1);
      }
      writer->Flush();
      transaction.Commit();
    }
  }

  // An event and its parameters go together, so that an interruption leaves none without.
  void CopyEvents() {
    Progress progress("Copying events", 0);
    const auto events = MakeRowWriter(to, onServer, EventTable());
    const auto parameters = MakeRowWriter(to, onServer, ParameterTable());
    Rows rows(from, "SELECT " + EventTable().ColumnList() + " FROM events WHERE event_id > ?1 ORDER BY event_id");
    Rows theirs(from, "SELECT " + ParameterTable().ColumnList() +
                          " FROM parameters WHERE event_id >= ?1 AND event_id <= ?2 ORDER BY event_id, position");
    rows.Ask(HighestKey(EventTable()).value_or(std::numeric_limits<long long>::min()));
    for (bool more = rows.Next(); more;) {
      const long long first = rows.Integer(0);
      long long last = first;
      Local::Transaction transaction(to);
      for (int count = 0; more && count < rowsInATransaction; ++count, more = rows.Next()) {
        last = rows.Integer(0);
        MakePartition(last / keysInAMonth);
        events->Add(rows);
        progress.Add(1);
      }
      events->Flush();
      for (theirs.Ask(first, last); theirs.Next();) {
        parameters->Add(theirs);
      }
      parameters->Flush();
      transaction.Commit();
    }
  }

  void MakePartition(long long month) {
    if (onServer && month >= firstMonth && month != lastMonth) {
      Local::Execute(to.Sql(), "SELECT make_partition(" + std::to_string(month) + ")");
      lastMonth = month;
    }
  }

  void SetSequences() {
    Local::Execute(to.Sql(), "SET statement_timeout = 0");
    Local::Transaction transaction(to);
    for (const StoredTable& table : TablesBeforeEvents()) {
      Local::Execute(to.Sql(), "SELECT setval(pg_get_serial_sequence('" + table.name + "', '" + table.Key() +
                                   "'), COALESCE(MAX(" + table.Key() + "), 0) + 1, false) FROM " + table.name);
    }
    Local::Execute(to.Sql(), "SELECT setval('event_numbers', COALESCE(MAX(event_id % " + std::to_string(keysInAMonth) +
                                 "), 0) + 1, false) FROM events");
    transaction.Commit();
    Local::Execute(to.Sql(), "ANALYZE");  // or the first questions are planned as if the tables were empty
  }

  const Store& from;
  Local::Connection& to;
  const bool onServer;
  long long lastMonth = 0;
};

/// Whether a copy holds what the store of which it was made holds; says so.
ExitCode Compare(const Store& from, const Store& copy) {
  const Numbers upTo = HighestNumbers(from);
  Progress progress("Comparing records", 0);
  const Content content = ContentOf(from, upTo, progress);
  const bool equal =
      ContentOf(copy, upTo, progress) == content && HighestNumbers(copy) == upTo && ReadSeals(copy) == ReadSeals(from);
  from.ExpectUntouched();
  if (!equal) {
    Say("finding: '" + copy.Name() + "' is no copy of '" + from.Name() + "': its records are others");
    return Found;
  }
  Say("store '" + from.Name() + "' copied to '" + copy.Name() + "' and compared: " +
      std::to_string(content.counts[Executions]) + " executions, " + std::to_string(content.counts[Events]) +
      " events, " + std::to_string(content.counts[Parameters]) + " parameters, hash " + content.hash);
  return Done;
}

class CopyVerb : public Verb {
 public:
  explicit CopyVerb(Options& options) {
    options.AddRequiredText("FROM", from, "Folder with the TSAL.config of the store to copy");
    options.AddRequiredText("TO", to, "Folder with that of an empty store, or of an earlier copy");
  }

  ExitCode Execute() override {
    const Local::Database source = Local::ReadSettings(from).database;
    const Local::Database target = Local::ReadSettings(to).database;
    if (const Store seen(source); seen.SchemaVersion() != Local::schemaVersion) {
      throw TsError("TS store '" + seen.Name() + "' has a schema of version " + std::to_string(seen.SchemaVersion()) +
                    "; expected version " + std::to_string(Local::schemaVersion) + ": run velora-ts prepare first");
    }
    const Store settled = SettledStore(source);  // so that the next copy can go on behind it
    if (const auto findings = ValueFindings(settled); !findings.empty()) {
      throw TsError("'" + settled.Name() + "' cannot be copied as it is: " + findings.front() +
                    "; see velora-ts verify");
    }
    Copy(settled, target);
    return Compare(settled, Store(target));
  }

 private:
  static void Copy(const Store& store, const Local::Database& target) {
    const auto connection = Local::OpenConnection(target);
    try {
      Copier copier(store, *connection, target);
      copier.TakeOverHistory();
      ExpectBeginning(store, Store(target));
      copier.Copy();
    } catch (const soci::soci_error& reason) {
      throw connection->ErrorOf(reason);
    }
  }

  std::string from, to;
};

}  // namespace

extern const Registration registeredCopy = {
    "copy", "Copies a store into another database, file or server, or goes on with a copy that was interrupted.",
    "copy /data/veldmar /data/facility", &Make<CopyVerb>};

}  // namespace Velora::Ts
