#pragma once

#include "reading/Source.h"

#include <memory>
#include <string>
#include <string_view>

class Store;

/// A question to a store and its rows, in SQL that every database of a store takes.
class Rows {
 public:
  Rows(const Store& store, const std::string& question);

  /// Asks from the beginning, with these values for ?1, ?2...
  template <typename... Values>
  Rows& Ask(const Values&... values) {
    cursor->Restart();
    int place = 0;
    (cursor->Bind(++place, values), ...);
    return *this;
  }
  /// Goes to the next row. @return whether there is one.
  bool Next() { return cursor->Next(); }

  bool IsNull(int column) const { return cursor->TypeOf(column) == Cursor::Type::Null; }
  bool IsNumber(int column) const {
    return cursor->TypeOf(column) == Cursor::Type::Integer || cursor->TypeOf(column) == Cursor::Type::Number;
  }
  long long Integer(int column) const { return cursor->Integer(column); }
  double Number(int column) const { return cursor->Number(column); }
  std::string_view Text(int column) const { return cursor->Text(column); }
  int Columns() const { return cursor->Columns(); }
  const char* Name(int column) const { return cursor->Name(column); }
  /// Appends a value as JSON, by the type that it is really stored with.
  void AppendValue(std::string& json, int column) const;

 private:
  std::unique_ptr<Cursor> cursor;
};
