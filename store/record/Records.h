#pragma once

#include "store/reading/EventRows.h"
#include "store/reading/KnownStores.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Table.h"

#include <array>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Store {

class Reader;

// The canonical form of what was recorded: docs/record-format.md. Change both together.

/// The kinds of record, in the order of their numbers in seals.
enum Kind {
  Schema,
  Sessions,
  Registrations,
  Activities,
  Versions,
  Configurations,
  Executions,
  Statuses,
  Events,
  Parameters,
  Notes,
  Stores,
  Signatures,
  TimeStamps,
  kindCount
};

/// The names of the kinds in records and seals.
inline constexpr std::array<const char*, kindCount> kindNames = {
    "schema", "session", "registration", "activity", "version", "configuration", "execution",
    "status", "event",   "parameter",    "note",     "store",   "signature",     "timestamp"};

inline constexpr std::array<Kind, kindCount> kinds = [] {
  std::array<Kind, kindCount> all{};
  for (std::size_t kind = 0; kind < all.size(); ++kind) {
    all[kind] = static_cast<Kind>(kind);
  }
  return all;
}();

/// The table that has the rows of a kind.
const Table& TableOf(Kind kind);

/// A number for each kind: a count, or the highest number of a row.
using PerKind = std::array<long long, kindCount>;

/// Below all rows: nothing is covered yet.
inline constexpr PerKind none = [] {
  PerKind numbers{};
  numbers.fill(std::numeric_limits<long long>::min());
  return numbers;
}();

/// The highest number of each kind in the rows of one store; 0 if it has none. Parameters have no numbers of their own.
PerKind HighestNumbers(const Reader& store, long long origin = thisStore);

/// Writes the records of one store, each on a line, as that store itself writes them. What a record refers to is
/// written before it, once in each part.
class Records {
 public:
  using Sink = std::function<void(std::string_view line)>;

  /// @param origin the number of the store whose rows to write.
  /// @param upTo the highest numbers to write.
  Records(const Reader& store, long long origin, const PerKind& upTo, Sink sink);

  /// Sets the highest numbers to write from now on.
  void Limit(const PerKind& highest) { upTo = highest; }

  /// Writes a part with a run. Of the run of another store, it has what the store added: its notes.
  /// @param root the key of the root of the run.
  /// @param since writes only records with higher numbers.
  void WriteRun(long long root, const PerKind& since = none);
  /// Writes a part with the records that belong to no run.
  /// @param since writes only records with higher numbers.
  void WriteRest(const PerKind& since = none);
  /// Begins a part with events that belong to no run, and with what they refer to.
  void BeginEventsOfNoRun();
  /// Writes the current one of the events that QueryEventsOfNoRun() finds.
  void WriteEvent(EventRows& rows);

  /// The number of records of each kind in the current part.
  const PerKind& Counts() const { return counts; }

 private:
  void BeginPart(const std::string& header, bool withReferences);
  /// Writes the records to which a row refers and that are not in this part yet.
  void WriteReferences(Kind kind, const Rows& rows);
  void WriteOnce(Kind kind, long long key);
  /// Writes the current row, after the records to which it refers.
  void Write(Kind kind, const Rows& rows);
  void WriteAll(Kind kind, Rows& rows);
  void WriteEvents(EventRows& rows);
  void BeginLine(Kind kind, const Rows& rows);
  void EndLine();
  void AppendParameter(const Rows& parameters);

  void WriteExecutions(long long root, const PerKind& since);
  /// The keys of the events of a run: more of a range than the numbers say, so that a server looks into few months.
  KeyRange EventKeys(long long root, const PerKind& since) const;
  long long KeyUpTo(Kind kind) const;
  long long KeyAfter(Kind kind, const PerKind& since) const;

  const Reader& store;
  const long long origin;
  PerKind upTo;
  const Sink sink;
  std::string line;
  bool withReferences = true;
  PerKind counts{};
  std::array<std::set<long long>, kindCount> written;

  std::map<Kind, Rows> byKey;  // of kinds that others refer to
  Rows registrations, executions, statuses, notes;
  EventRows events;
};

/// A query for the events of all stores that belong to no run, at or after one time, ?1, and before another, ?2. Those
/// of one store follow one another.
EventRows QueryEventsOfNoRun(const Reader& store);

/// A query for the event with the key ?1.
EventRows QueryEvent(const Reader& store);

/// The numbers of the stores other than its own that have something about a run, in their order.
std::vector<long long> StoresThatAddedTo(const Reader& store, long long root);

}  // namespace Velora::Store
