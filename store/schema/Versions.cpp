#include "store/schema/Versions.h"

#include "store/schema/Arrivals.h"
#include "store/schema/PostgreSqlDialect.h"
#include "store/schema/ServerStatements.h"
#include "store/schema/SessionLocks.h"
#include "store/schema/SqliteDialect.h"

#include <algorithm>
#include <iterator>

namespace Velora::Store {
namespace {

void First(Dialect& to) {
  to.OnServer(Server::Version2::eventNumbers);
  for (const Table& table : TablesOf(1)) {
    to.Make(table);
  }
  to.Make(Views::ExecutionStates());
  to.Make(Views::UnfinishedOfVersion1());
  to.Make(Views::Readings());
}

void Second(Dialect& to) {
  to.Make(TableNamed("seals"));
  to.Make(Views::DurationsOfVersion2());
  to.OnServer(Server::Version2::refuseChange);
  for (const Table& table : TablesOf(2)) {
    to.KeepRows(table);
  }
  to.OnServer(Server::Version2::partitions);
}

void Third(Dialect& to) {
  to.OnServer(Server::Version3::locks);
  to.OnServer(Server::Version3::microseconds);
  to.Replace(Views::Durations());
  to.OnServer(Server::Version3::textDigest);
  for (const Table& table : TablesOf(3)) {
    if (!table.uniqueTogether.empty()) {
      to.OnServer("DROP INDEX " + table.name + "_once; " + UniqueIndex(table, "text_digest"));
    }
    if (!table.uniquePerStore.empty()) {
      to.MakeUniquePerStore(table);
    }
  }
  to.OnServer(Server::Version3::keys);
  to.OnServer(Server::Version3::partitions);
  to.OnServer(Server::Version3::withEvents);
  for (const char* const table : {"notes", "tree_leaves", "tree_parts", "signatures", "timestamps", "stores"}) {
    to.Make(TableNamed(table));
    to.KeepRows(TableNamed(table));
  }
  for (const Table& table : TablesOf(3)) {
    to.NumberRows(table);
    if (table.since == 3) {
      to.OnServer("ALTER SEQUENCE " + table.name + '_' + table.Key() + "_seq MAXVALUE 9999999999");
    }
  }
  for (const Table& table : TablesOf(3)) {
    to.MakeIndexes(table, 3);
  }
  to.RefuseOldSeals();
  to.NoteRunning();
  to.Make(SessionLocks());
  to.Make(Arrivals());
  to.OnServer(Server::Version3::noteArrival);
  to.OnServer(Server::Version3::rights);
  to.Replace(Views::Unfinished());
}

struct Version {
  int number;
  void (*bring)(Dialect&);
  bool onlyAdds;  // hosts of the version before may record beside those of this one
};

constexpr Version versions[] = {{1, First, false}, {2, Second, false}, {3, Third, true}};

std::vector<Version> Between(int from, int to) {
  std::vector<Version> between;
  std::copy_if(std::begin(versions), std::end(versions), std::back_inserter(between),
               [&](const Version& version) { return version.number > from && version.number <= to; });
  return between;
}

void Write(Dialect& dialect, int from, int to) {
  for (const Version& version : Between(from, to)) {
    version.bring(dialect);
  }
}

}  // namespace

std::vector<int> VersionEntries(int from, int to) {
  std::vector<int> entries;
  for (const Version& version : Between(from, to)) {
    if (!version.onlyAdds) {
      entries.clear();  // it says no less than those before it
    }
    entries.push_back(version.onlyAdds ? -version.number : version.number);
  }
  return entries;
}

std::vector<std::string> SqliteSchema(int from, int to) {
  SqliteDialect dialect;
  Write(dialect, from, to);
  return dialect.Statements();
}

std::string PostgreSqlSchema(const std::string& schema, int from, int to) {
  PostgreSqlDialect dialect(schema);
  Write(dialect, from, to);
  std::string statements;
  for (const std::string& statement : dialect.Statements()) {
    statements += statement + ";\n";
  }
  return statements;
}

}  // namespace Velora::Store
