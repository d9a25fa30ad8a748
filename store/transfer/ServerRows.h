#pragma once

#include "store/transfer/RowWriter.h"

#include <string>

namespace Velora::Store {

class PostgreSqlConnection;

/// Sends rows to a server with COPY. Makes the partition of the month of each event whose key has one.
class ServerRows : public RowWriter {
 public:
  ServerRows(PostgreSqlConnection& server, const Table& table, long long shift);

  void Add(const Rows& rows, std::string_view bytes) override;
  void Flush() override;

 private:
  void MakeRoomFor(long long event);

  PostgreSqlConnection& server;
  const bool isByMonth;
  const long long shift;
  const std::string statement;
  long long month = 0;
  bool sending = false;
  std::string unsent;
};

}  // namespace Velora::Store
