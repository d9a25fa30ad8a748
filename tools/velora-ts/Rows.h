#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

class Store;

/// A question to a store and its rows. The one place, with Store, that knows which database it is.
class Rows {
 public:
  Rows(const Store& store, const char* question);

  /// Asks from the beginning, with these values for ?1, ?2...
  template <typename... Values>
  Rows& Ask(const Values&... values) {
    sqlite3_reset(statement.get());
    int place = 0;
    (Bind(++place, values), ...);
    return *this;
  }
  /// Goes to the next row. @return whether there is one.
  bool Next();

  bool IsNull(int column) const;
  long long Integer(int column) const;
  double Number(int column) const;
  std::string_view Text(int column) const;
  int Columns() const;
  const char* Name(int column) const;
  /// Appends a value as JSON, by the type that it is really stored with.
  void AppendValue(std::string& json, int column) const;

 private:
  void Bind(int place, long long value);
  void Bind(int place, const std::string& value);

  const Store& store;
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement;
};
