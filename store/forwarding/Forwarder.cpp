#include "store/forwarding/Forwarder.h"

#include "store/forwarding/Facility.h"
#include "store/forwarding/Pace.h"
#include "store/reading/Reader.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Versions.h"
#include "store/transfer/LastRow.h"
#include "store/transfer/TakenStore.h"

#include <algorithm>
#include <optional>

namespace Velora::Store {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds betweenNotes{10};

/// The last row of each table that has come, by the name of the table, in the form of RowWith().
using Ends = std::map<std::string, std::string>;

void ExpectForwardable(const Reader& file) {
  if (file.SchemaVersion() != schemaVersion) {
    throw Refused("TS store '" + file.Name() + "' has a schema of version " + std::to_string(file.SchemaVersion()) +
                  "; expected version " + std::to_string(schemaVersion) +
                  (file.SchemaVersion() < schemaVersion ? ": start a host of this version, or run velora-ts prepare"
                                                        : ": forward with the newer program that made it"));
  }
  for (const auto& [table, highest] : MarksOf(file)) {
    if (highest >= numbersOfAStore) {
      throw Refused("TS store '" + file.Name() + "' has records of other stores (" + table + " " +
                    std::to_string(highest) + "); expected records of its own alone");
    }
  }
}

std::unique_ptr<Reader> Open(const Database& database) {
  std::unique_ptr<Reader> file;
  try {
    file = std::make_unique<Reader>(database);
  } catch (const UnknownSchema& error) {
    throw Refused(error.what());
  }
  ExpectForwardable(*file);
  return file;
}

Ends EndsOf(const Reader& file, const Marks& marks, long long shift) {
  Ends ends;
  for (const auto& [table, mark] : marks) {
    ends[table] = mark == 0 ? "" : RowWith(file.Sql(), TableNamed(table), mark, shift);
  }
  return ends;
}

}  // namespace

/// A connection to the facility, with the lock of the store.
class Forwarder::Session {
 public:
  Session(const Database& from, const Database& to) : from(from), there(to.where) {
    const auto store = Open(from);
    guid = GuidOf(store->Sql());
    there.Take(*store);
    reached = there.Reached();
    Compare(*store);
    store->ExpectUntouched();
  }

  const Marks& Reached() const { return reached; }
  const std::string& Guid() const { return guid; }

  /// @return nothing if either side is not what it was, so that they must be compared again.
  std::optional<Progress> SendNext(Pace& portions) {
    auto store = Open(from);
    if (GuidOf(store->Sql()) != guid || EndsOf(*store, reached, there.Shift()) != ends) {
      return std::nullopt;
    }
    const Portion portion = ReadPortion(*store, reached, portions.Size(), there.Shift());
    const Progress progress{portion.rows, portion.events, WaitingBehind(*store, portion.upTo)};
    Ends newEnds = EndsOf(*store, portion.upTo, there.Shift());
    store->ExpectUntouched();
    store.reset();  // so that what hosts write meanwhile need not be kept for this state
    if (!(progress.rows == 0 ? IsStillThere(progress.left) : Add(portion, progress.left, portions))) {
      return std::nullopt;
    }
    reached = portion.upTo;
    ends = std::move(newEnds);
    return progress;
  }

 private:
  /// Expects that what the facility has of the store is what the file begins with.
  void Compare(const Reader& store) {
    ends = EndsOf(store, reached, there.Shift());
    for (const auto& [table, end] : ends) {
      const long long number = reached[table];
      if (number != 0 && end != there.RowOf(TableNamed(table), number)) {
        throw Refused(WhyNoneCanFollow(store.Name(), end, TableNamed(table), number, there.Name()));
      }
    }
  }

  bool IsStillThere(const Waiting& left) {
    if (Clock::now() < noted + betweenNotes) {
      return true;
    }
    const bool isThere = there.Note(left) == reached;
    noted = Clock::now();
    return isThere;
  }

  bool Add(const Portion& portion, const Waiting& left, Pace& portions) {
    const Clock::time_point start = Clock::now();
    const std::chrono::milliseconds forBytes(static_cast<long long>(portion.bytes / 1000));  // a second for a megabyte
    try {
      if (!there.Add(portion, reached, left, portions.Longest() + forBytes)) {
        return false;
      }
    } catch (const NotReachable&) {
      portions.SlowDown();
      throw;
    }
    noted = Clock::now();
    portions.Adapt(noted - start);
    return true;
  }

  const Database from;
  Facility there;
  std::string guid;  // of the store in the file
  Marks reached;
  Ends ends;                                           // the last rows up to there
  Clock::time_point noted = Clock::time_point::min();  // when the facility was last told that the store can be heard
};

Forwarder::Forwarder(const Database& file, const Database& facility)
    : file(file), facility(facility), pace(std::make_unique<Pace>()) {}

Forwarder::~Forwarder() = default;

Forwarder::Progress Forwarder::SendNext() {
  try {
    for (;;) {
      if (!session) {
        session = std::make_unique<Session>(file, facility);
        reached = session->Reached();
        guid = session->Guid();
      }
      if (const auto progress = session->SendNext(*pace)) {
        reached = session->Reached();
        return *progress;
      }
      session.reset();
    }
  } catch (...) {
    session.reset();
    throw;
  }
}

const Marks& Forwarder::Reached() const { return reached; }

const std::string& Forwarder::Guid() const { return guid; }

}  // namespace Velora::Store
