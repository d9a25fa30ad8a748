#pragma once

#include "store/database/Database.h"
#include "store/schema/StoreNumbers.h"

#include <functional>
#include <limits>
#include <string>
#include <string_view>

namespace Velora::Store {

class Reader;
class Rows;
class RowWriter;
class Writer;
struct Table;

/// Is called with each row of a store, in the order of the keys within its table.
/// @param row the row in the form of RowBytes.h, with the keys that it has in the target.
using RowVisitor = std::function<void(const Table& table, std::string_view row)>;

/// The keys of the rows of one store in another.
struct Keys {
  long long shift = 0;
  long long before = std::numeric_limits<long long>::min();
  long long last = std::numeric_limits<long long>::max();

  /// All keys of a store, which a copy keeps.
  static Keys All() { return {}; }
  static Keys OfStore(long long number) {
    return {ShiftOf(number), ShiftOf(number), ShiftOf(number) + numbersOfAStore - 1};
  }
};

/// Reads the rows with these keys.
/// @param shift is added to the keys that are visited.
void VisitRows(const Reader& store, const Keys& keys, const RowVisitor& visit, long long shift = 0);

/// Copies the rows of a store in the order of their keys, behind those that are already in the target.
class RowCopy {
 public:
  /// @param visit is called with all rows of the store, also with those that are already in the target.
  RowCopy(const Reader& from, Writer& to, Database::Kind kind, const Keys& keys, const RowVisitor& visit);

  /// Copies all rows, within a transaction.
  void CopyAll();
  /// Copies all rows in transactions of some thousand.
  void CopyInPortions();

 private:
  void CopyTable(const Table& table);
  void CopyEvents();
  void InTransaction(const std::function<void()>& work);
  /// The number up to which the target has the rows of a table.
  long long Reached(const Table& table);
  long long CopyPortion(const Table& table, Rows& rows, RowWriter& writer, bool& more);
  std::string_view Visit(const Table& table, const Rows& rows);
  void VisitAll(const Table& table, Rows& rows);

  const Reader& from;
  Writer& to;
  const Database::Kind kind;
  const Keys keys;
  const RowVisitor& visit;
  bool inPortions = false;
  std::string bytes;
};

}  // namespace Velora::Store
