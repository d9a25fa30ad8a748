#pragma once

#include <cstddef>
#include <string_view>

namespace Velora::Store {

/// A prepared statement of a connection, and the rows of its result.
class Cursor {
 public:
  enum class Type { Null, Integer, Number, Text, Blob };

  Cursor() = default;
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  virtual ~Cursor() = default;

  /// Goes back to the state before the first row. Bound values stay.
  virtual void Restart() = 0;
  /// Binds a value, before the first row.
  /// @param place the number of the value in the statement, from 1.
  virtual void Bind(int place, std::nullptr_t null) = 0;
  virtual void Bind(int place, long long value) = 0;
  virtual void Bind(int place, double value) = 0;
  virtual void Bind(int place, std::string_view value) = 0;
  /// Goes to the next row. The first call runs the statement.
  /// @return whether there is a row; false again for each call after the last one.
  virtual bool Next() = 0;
  /// Runs a statement whose result nobody reads. On a server, an error can come with a later statement.
  virtual void Run() { Next(); }

  virtual int Columns() const = 0;
  virtual const char* Name(int column) const = 0;
  /// The type of a value of the current row.
  virtual Type TypeOf(int column) const = 0;
  virtual long long Integer(int column) const = 0;
  virtual double Number(int column) const = 0;
  /// A value of the current row as text, which is valid until the next row.
  virtual std::string_view Text(int column) const = 0;
};

}  // namespace Velora::Store
