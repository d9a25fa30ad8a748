#pragma once

#include "store/database/PostgreSqlConnection.h"

#include <map>
#include <string>
#include <vector>

namespace Velora::Store {

/// The rows of a result from a server.
class PostgreSqlRows : public Cursor {
 public:
  int Columns() const override { return PQnfields(rows.get()); }
  const char* Name(int column) const override { return PQfname(rows.get(), column); }
  Type TypeOf(int column) const override;
  long long Integer(int column) const override;
  double Number(int column) const override;
  std::string_view Text(int column) const override;

 protected:
  explicit PostgreSqlRows(PostgreSqlConnection& connection) : connection(connection) {}

  PostgreSqlConnection& connection;
  PostgreSqlConnection::Answer rows{nullptr, &PQclear};
  int row = -1;
};

/// A statement whose result is fetched at once.
class PostgreSqlStatement : public PostgreSqlRows {
 public:
  PostgreSqlStatement(PostgreSqlConnection& connection, const std::string& text);

  void Restart() override { rows.reset(); }
  void Bind(int place, std::nullptr_t) override { Place(place) = std::nullopt; }
  void Bind(int place, long long value) override { Place(place) = std::to_string(value); }
  void Bind(int place, double value) override;
  void Bind(int place, std::string_view value) override { Place(place) = std::string(value); }
  bool Next() override;
  void Run() override { connection.RunKept(text, values); }

 private:
  PostgreSqlConnection::Value& Place(int place);

  std::string text;
  std::vector<PostgreSqlConnection::Value> values;
};

/// A statement whose result is fetched in portions, so that it can be of any length. A result of one portion takes one
/// message in each direction. The result is from the state that the transaction had when the statement was run.
class PostgreSqlStream : public PostgreSqlRows {
 public:
  PostgreSqlStream(PostgreSqlConnection& connection, std::string name, std::string text)
      : PostgreSqlRows(connection), name(std::move(name)), text(std::move(text)) {}
  ~PostgreSqlStream() override { Forget(); }

  void Restart() override { asked = false; }
  void Bind(int place, std::nullptr_t) override { values[place] = "NULL"; }
  void Bind(int place, long long value) override { values[place] = std::to_string(value); }
  void Bind(int place, double value) override;
  void Bind(int place, std::string_view value) override { values[place] = connection.Quoted(value); }
  bool Next() override;

 private:
  void Ask();
  void Fetch(const std::string& before);
  void Forget() noexcept;

  const std::string name;
  const std::string text;
  std::map<int, std::string> values;
  bool declared = false;
  bool asked = false;
};

}  // namespace Velora::Store
