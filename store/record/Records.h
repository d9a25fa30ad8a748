#pragma once

#include "store/reading/EventRows.h"

#include <array>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <string_view>

namespace Velora::Store {

class Reader;

// The canonical form of what was recorded: docs/record-format.md. Keep the two together.

/// The kinds of record, in the order in which they are counted.
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
  kindCount
};

/// What they are called.
inline constexpr std::array<const char*, kindCount> kindNames = {"schema",  "session",       "registration", "activity",
                                                                 "version", "configuration", "execution",    "status",
                                                                 "event",   "parameter"};

/// A number for each kind: how many there are, or the highest that counts.
using Numbers = std::array<long long, kindCount>;

/// Below every number: nothing is covered yet.
inline constexpr Numbers none = [] {
  Numbers numbers{};
  numbers.fill(std::numeric_limits<long long>::min());
  return numbers;
}();

/// The highest number of each kind that the store has now; parameters have none of their own.
Numbers HighestNumbers(const Reader& store);

/// Writes records one after the other, each on a line. What a record refers to stands before it, once in each part.
class Records {
 public:
  using Sink = std::function<void(std::string_view line)>;

  /// @param upTo records with a higher number are left out.
  Records(const Reader& store, const Numbers& upTo, Sink sink);

  /// A run, or what was added to it since.
  /// @param root key of its topmost execution.
  void WriteRun(long long root, const Numbers& since = none);
  /// What belongs to no run, by itself.
  void WriteRest(const Numbers& since = none);
  /// The events of no run from a time on and before another, with what they refer to.
  void WriteEventsOfNoRun(const std::string& from, const std::string& before);

  /// How many records of each kind were written in the part begun last.
  const Numbers& Counts() const { return counts; }

 private:
  void BeginPart(const std::string& header, bool withReferences);
  /// Writes what the row refers to and has not been written yet.
  void MentionReferences(const Rows& from);
  void Mention(Kind kind, long long key);
  /// Writes the row where `rows` stands.
  void Write(Kind kind, const Rows& rows);
  void WriteAll(Kind kind, Rows& rows);
  void WriteEvents(EventRows& rows);
  void BeginLine(Kind kind, const Rows& rows);
  void EndLine();
  void AppendParameter(const Rows& parameters);

  const Reader& store;
  const Numbers upTo;
  const Sink sink;
  std::string line;
  bool withReferences = true;
  Numbers counts{};
  std::array<std::set<long long>, kindCount> mentioned;

  Rows session, registrations, activity, version, configuration;
  Rows executions, statuses;
  EventRows events;
};

}  // namespace Velora::Store
