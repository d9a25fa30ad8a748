#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace Velora::Ts {

/// A question to a database and its answer, row by row.
class Cursor {
 public:
  enum class Type { Null, Integer, Number, Text, Blob };

  Cursor() = default;
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;
  virtual ~Cursor() = default;

  /// Goes back to the state before the first row; values are kept until others are bound.
  virtual void Restart() = 0;
  virtual void Bind(int place, long long value) = 0;
  virtual void Bind(int place, const std::string& value) = 0;
  /// Goes to the next row. @return whether there is one; after the last one no more.
  virtual bool Next() = 0;

  virtual int Columns() const = 0;
  virtual const char* Name(int column) const = 0;
  virtual Type TypeOf(int column) const = 0;
  virtual long long Integer(int column) const = 0;
  virtual double Number(int column) const = 0;
  virtual std::string_view Text(int column) const = 0;
};

/// One state of a database, opened for reading, whatever hosts record meanwhile. Neither changes it, nor waits for
/// those who write it, nor makes them wait.
class Source {
 public:
  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  virtual ~Source() = default;

  /// Whether it has the tables of a store.
  virtual bool IsStore() = 0;
  /// @param question has its values at ?1, ?2...
  virtual std::unique_ptr<Cursor> Prepare(const std::string& question) = 0;
  /// @throws TsError when what was read may be a mixture, since hosts began to write while it was read.
  virtual void ExpectUntouched() const = 0;
};

}  // namespace Velora::Ts
