#pragma once

#include "store/database/Connection.h"

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Store {

class Reader;

/// A query to a store and its rows. The SQL must be accepted by both databases.
class Rows {
 public:
  /// The most bytes of a text that is shown. A longer one would need too much memory.
  static constexpr std::size_t longestShown = std::size_t{64} << 20U;

  Rows(Connection& connection, const std::string& question);
  Rows(const Reader& store, const std::string& question);

  /// Runs the query with these values for ?1, ?2..., and stands before the first row.
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
  /// A value to be shown. @throws Error, naming its row, when it is longer than `longestShown`.
  std::string_view Text(int column) const {
    const std::string_view text = Whole(column);
    if (text.size() > longestShown) {
      Refuse(column);
    }
    return text;
  }
  /// A value of any length, to be copied or compared.
  std::string_view Whole(int column) const { return cursor->Text(column); }
  /// @throws Error, naming the row, when a value is longer than `longestShown`.
  void ExpectShowable(int column) const { static_cast<void>(Text(column)); }
  int Columns() const { return cursor->Columns(); }
  const char* Name(int column) const { return cursor->Name(column); }
  /// Appends a value of any length as JSON. Its form follows the type with which the value is stored.
  /// @throws Error, naming its row, when there is not enough memory for it.
  void AppendValue(std::string& json, int column) const;

 private:
  void Append(std::string& json, int column) const;
  [[noreturn]] void Refuse(int column) const;
  /// The column and row of a value, in words.
  std::string PlaceOf(int column) const;

  std::unique_ptr<Cursor> cursor;
};

/// A column of texts in a query, or the beginning of each text.
/// @param longest so many characters; 0 for the whole text.
std::string Beginning(const std::string& column, std::size_t longest);

}  // namespace Velora::Store
