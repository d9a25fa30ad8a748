#pragma once

#include "reading/Source.h"

#include <libpq-fe.h>

#include <memory>
#include <string>

namespace Velora::Ts {

/// A database of a PostgreSQL server.
class PostgreSqlSource : public Source {
 public:
  /// @param connection what PostgreSQL's client library takes.
  /// @param snapshot of another connection, whose state is to be read; empty for that of this moment.
  explicit PostgreSqlSource(const std::string& connection, const std::string& snapshot = "");

  bool IsStore() override;
  std::unique_ptr<Cursor> Prepare(const std::string& question) override;
  void ExpectUntouched() const override {}

  using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;
  /// Runs statements and returns the result of the last one.
  Result Run(const std::string& statements);
  std::string Quoted(const std::string& value) const;
  /// Has a cursor closed on the server, together with what is asked next.
  void Close(const std::string& cursor) noexcept;

 private:
  const std::string name;
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection;
  std::string closing;
  int cursors = 0;
};

}  // namespace Velora::Ts
