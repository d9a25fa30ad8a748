#include "store/forwarding/Portion.h"

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"
#include "store/transfer/RowBytes.h"

#include <algorithm>

namespace Velora::Store {
namespace {

constexpr std::size_t mostBytes = 4'000'000;

bool IsMarked(const Table& table) { return table.primaryKey.empty(); }

std::string OrderOf(const Table& table) { return IsMarked(table) ? table.Key() : Listed(table.primaryKey); }

/// Reads the rows of a table behind one number and up to another, but hardly more bytes than some.
Portion::TableRows ReadTable(const Reader& file, const Table& table, long long from, long long upTo, long long shift,
                             std::size_t bytes) {
  Portion::TableRows read{table, beginOfRows};
  Rows rows(file, "SELECT " + table.ColumnList() + " FROM " + table.name + " WHERE " + table.Key() + " > ?1 AND " +
                      table.Key() + " <= ?2 ORDER BY " + OrderOf(table));
  for (rows.Ask(from, upTo); read.bytes.size() <= bytes && rows.Next(); ++read.rows) {
    AppendRow(read.bytes, rows, table, shift);
  }
  read.bytes += endOfRows;
  return read;
}

Portion Read(const Reader& file, const Marks& from, const Marks& upTo, long long shift, std::size_t bytes) {
  Portion portion;
  portion.upTo = upTo;
  for (const Table& table : Tables()) {
    const std::string marked = IsMarked(table) ? table.name : "events";
    Portion::TableRows read = ReadTable(file, table, from.at(marked), upTo.at(marked), shift, bytes);
    portion.rows += IsMarked(table) ? read.rows : 0;
    portion.events += table.name == "events" ? read.rows : 0;
    portion.bytes += read.bytes.size();
    if (read.rows > 0) {
      portion.tables.push_back(std::move(read));
    }
  }
  return portion;
}

}  // namespace

// Texts can be of any length.
Portion ReadPortion(const Reader& file, const Marks& from, long long size, long long shift) {
  for (;; size = std::max(1LL, size / 4)) {
    const std::size_t bytes = size == 1 ? std::string::npos : mostBytes;
    Portion portion = Read(file, from, PlanPortion(file, from, size), shift, bytes);
    if (portion.bytes <= bytes) {
      return portion;
    }
  }
}

}  // namespace Velora::Store
