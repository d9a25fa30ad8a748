#include "Rows.h"

#include "Json.h"
#include "Store.h"

#include <TSAL/Error.h>

namespace {

[[noreturn]] void Fail(const Store& store) {
  store.ExpectUntouched();
  throw Quor::TolvaServices::TsError("TS store '" + store.Path() + "': " + sqlite3_errmsg(store.Handle()));
}

}  // namespace

Rows::Rows(const Store& store, const char* question) : store(store), statement(nullptr, &sqlite3_finalize) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(store.Handle(), question, -1, &prepared, nullptr) != SQLITE_OK) {
    Fail(store);
  }
  statement.reset(prepared);
}

bool Rows::Next() {
  const int result = sqlite3_step(statement.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    Fail(store);
  }
  return result == SQLITE_ROW;
}

bool Rows::IsNull(int column) const { return sqlite3_column_type(statement.get(), column) == SQLITE_NULL; }

long long Rows::Integer(int column) const { return sqlite3_column_int64(statement.get(), column); }

double Rows::Number(int column) const { return sqlite3_column_double(statement.get(), column); }

std::string_view Rows::Text(int column) const {
  const void* const bytes = sqlite3_column_blob(statement.get(), column);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column))};
}

int Rows::Columns() const { return sqlite3_column_count(statement.get()); }

const char* Rows::Name(int column) const { return sqlite3_column_name(statement.get(), column); }

void Rows::AppendValue(std::string& json, int column) const {
  switch (sqlite3_column_type(statement.get(), column)) {
    case SQLITE_INTEGER:
      json += std::to_string(Integer(column));
      break;
    case SQLITE_FLOAT:
      AppendNumber(json, Number(column));
      break;
    case SQLITE_TEXT:
      AppendText(json, Text(column));
      break;
    case SQLITE_BLOB:
      AppendBlob(json, Text(column));
      break;
    default:
      json += "null";
  }
}

void Rows::Bind(int place, long long value) { sqlite3_bind_int64(statement.get(), place, value); }

void Rows::Bind(int place, const std::string& value) {
  sqlite3_bind_text(statement.get(), place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
}
