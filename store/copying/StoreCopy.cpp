#include "store/copying/StoreCopy.h"

#include "store/copying/Continuation.h"
#include "store/copying/CopyTarget.h"
#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/schema/Running.h"
#include "store/schema/Tables.h"
#include "store/transfer/RowBytes.h"
#include "store/transfer/RowWriter.h"
#include "store/transfer/TakenStore.h"

#include <chrono>
#include <thread>

namespace Velora::Store {
namespace {

constexpr std::chrono::seconds longestWaitForLock{5};  // for a server that notices that a copy was killed
constexpr const char* history = "ts_schema";
constexpr const char* identity = "stores";

class StoreCopy {
 public:
  StoreCopy(const Reader& from, Writer& to, const Database& where, const RowVisitor& visit)
      : from(from), to(to), where(where), target(MakeCopyTarget(to, where)), visit(visit) {}

  /// Makes the target a copy of the store.
  void Keep() {
    if (!IsTargetNew()) {
      throw Error("'" + from.Name() + "' is a store on a server or has records of other stores, and '" + to.Name() +
                  "' is not empty; expected an empty store for a copy of such a store");
    }
    target->Fill(true, [this] {
      ExpectNew();
      to.Sql().RunScript(std::string("DELETE FROM ") + history + "; DELETE FROM " + identity);
      RowCopy(from, to, where.kind, Keys::All(), visit).CopyAll();
      to.Sql().RunScript(Running::fill);
      target->ContinueNumbers();
    });
    target->Finish();
  }

  /// Makes the store one of those that the target has. @return its number there.
  long long TakeIn() {
    const bool isNew = IsTargetNew();
    ExpectUnknownOrTakenIn(from, to, where.kind);
    if (target->MayFill(isNew)) {
      target->Fill(isNew, [this, isNew] { FillWithin(isNew); });
    } else {
      Register();
      AwaitLock();
      ExpectContinuation(from, Reader(where), number);
      RowCopy(from, to, where.kind, Keys::OfStore(number), visit).CopyInPortions();
    }
    target->Finish();
    return number;
  }

 private:
  // A new store has recorded when it was made, and its guid.
  bool IsTargetNew() {
    for (const Table& table : Tables()) {
      const auto made = table.name == history ? VersionEntries(0).size() : table.name == identity ? 1 : 0;
      const auto more =
          "SELECT COUNT(*) FROM (SELECT 1 FROM " + table.name + " LIMIT " + std::to_string(made + 1) + ") AS first";
      if (to.Sql().Find<std::size_t>(more) != made) {
        return false;
      }
    }
    return true;
  }

  void ExpectNew() {
    if (!IsTargetNew()) {
      throw Error("'" + to.Name() + "' was empty, and another program began to write into it; run the copy again");
    }
  }

  void FillWithin(bool isNew) {
    if (isNew) {
      ExpectNew();
    }
    number = NumberFor(where.kind, to.Sql(), GuidOf(from.Sql()));
    if (!isNew) {
      ExpectContinuation(from, Reader(where), number);
    }
    RowCopy(from, to, where.kind, Keys::OfStore(number), visit).CopyAll();
    const std::string those = IsOfStore("execution_id", number);
    to.Sql().RunScript("DELETE FROM running WHERE " + those + "; " + Running::fill + " AND " + those);
  }

  /// Gives the store a number, if it has none.
  void Register() {
    Transaction transaction(to);
    const std::string guid = GuidOf(from.Sql());
    number = NumberFor(where.kind, to.Sql(), guid);
    if (NumberIn(to.Sql(), guid)) {
      return;
    }
    const Table& stores = TableNamed(identity);
    const auto writer = MakeRowWriter(where.kind, to.Sql(), stores, ShiftOf(number));
    std::string bytes;
    for (Rows rows(from, "SELECT " + stores.ColumnList() + " FROM stores ORDER BY store_id"); rows.Next();) {
      bytes.clear();
      AppendRow(bytes, rows, stores, ShiftOf(number));
      writer->Add(rows, bytes);
    }
    writer->Flush();
    transaction.Commit();
  }

  void AwaitLock() {
    using Clock = std::chrono::steady_clock;
    for (const auto end = Clock::now() + longestWaitForLock; !TakeLock(to.Sql(), number);) {
      if (Clock::now() > end) {
        throw Error("another program adds the records of '" + from.Name() + "' to '" + to.Name() +
                    "'; expected one at a time");
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }

  const Reader& from;
  Writer& to;
  const Database& where;
  const std::unique_ptr<CopyTarget> target;
  const RowVisitor& visit;
  long long number = 0;
};

}  // namespace

void ExpectThisVersion(const Reader& store) {
  if (const int version = store.SchemaVersion(); version != schemaVersion) {
    throw Error("TS store '" + store.Name() + "' has a schema of version " + std::to_string(version) +
                "; expected version " + std::to_string(schemaVersion) +
                (version < schemaVersion ? ": run velora-ts prepare first" : ": a newer program made it"));
  }
}

Copied CopyRows(const Reader& from, const Database& target, const RowVisitor& visit) {
  Copied copied{std::nullopt, OpenForWriting(target)};
  ExpectThisVersion(Reader(target));
  StoreCopy copy(from, *copied.store, target, visit);
  if (CanBeTakenIn(from)) {
    copied.number = copy.TakeIn();
  } else {
    copy.Keep();
  }
  return copied;
}

}  // namespace Velora::Store
