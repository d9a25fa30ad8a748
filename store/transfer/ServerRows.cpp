#include "store/transfer/ServerRows.h"

#include "store/database/PostgreSqlConnection.h"
#include "store/reading/Rows.h"
#include "store/schema/StoreNumbers.h"
#include "store/schema/Table.h"
#include "store/transfer/RowBytes.h"

namespace Velora::Store {
namespace {

constexpr std::size_t bytesAtOnce = 100'000;
constexpr long long keysInAMonth = 10'000'000'000;  // docs/postgresql.md

}  // namespace

ServerRows::ServerRows(PostgreSqlConnection& server, const Table& table, long long shift)
    : server(server),
      isByMonth(table.isByMonth),
      shift(shift),
      statement("COPY " + table.name + " (" + table.ColumnList() + ") FROM STDIN (FORMAT binary)") {}

void ServerRows::Add(const Rows& rows, std::string_view bytes) {
  if (isByMonth) {
    MakeRoomFor(rows.Integer(0) + shift);
  }
  if (!sending) {
    server.BeginSending(statement);
    unsent = beginOfRows;
    sending = true;
  }
  unsent += bytes;
  if (unsent.size() > bytesAtOnce) {
    server.Send(unsent);
    unsent.clear();
  }
}

void ServerRows::Flush() {
  if (sending) {
    server.Send(unsent += endOfRows);
    server.EndSending();
    unsent.clear();
    sending = false;
  }
}

void ServerRows::MakeRoomFor(long long event) {
  const long long eventMonth = event / keysInAMonth;
  if (event >= firstMonthlyKey && eventMonth != month) {
    Flush();
    server.RunScript("SELECT make_partition(" + std::to_string(eventMonth) + ")");
    month = eventMonth;
  }
}

}  // namespace Velora::Store
