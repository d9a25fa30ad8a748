#pragma once

#include "store/database/Connection.h"

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Store {

class Reader;

/// A question to a store and its rows, in SQL that every database of a store takes.
class Rows {
 public:
  /// Bytes of a text. A longer one would take a verb that shows it too much memory.
  static constexpr std::size_t longestShown = std::size_t{64} << 20U;

  Rows(Connection& connection, const std::string& question);
  Rows(const Reader& store, const std::string& question);

  /// Asks from the beginning, with these values for ?1, ?2...
  template <typename... Values>
  Rows& Ask(const Values&... values) {
    cursor->Restart();
    BindValues(*cursor, values...);
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
  /// A value to be shown. @throws Error naming its row where it is longer than `longestShown`.
  std::string_view Text(int column) const {
    const std::string_view text = Whole(column);
    if (text.size() > longestShown) {
      Refuse(column);
    }
    return text;
  }
  /// The same of any length, for what copies or compares it.
  std::string_view Whole(int column) const { return cursor->Text(column); }
  void ExpectShowable(int column) const { static_cast<void>(Text(column)); }
  int Columns() const { return cursor->Columns(); }
  const char* Name(int column) const { return cursor->Name(column); }
  /// Appends a value of any length as JSON, by the type that it is really stored with.
  /// @throws Error naming its row where memory does not take it.
  void AppendValue(std::string& json, int column) const;

 private:
  void Append(std::string& json, int column) const;
  [[noreturn]] void Refuse(int column) const;
  /// A value's column and row, in words.
  std::string PlaceOf(int column) const;

  std::unique_ptr<Cursor> cursor;
};

}  // namespace Velora::Store
