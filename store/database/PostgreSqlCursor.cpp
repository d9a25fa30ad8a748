#include "store/database/PostgreSqlCursor.h"

#include "store/values/Json.h"

#include <charconv>

namespace Velora::Store {
namespace {

constexpr int rowsAtOnce = 500;

// The type numbers of the server for the columns and counts of a store.
enum : Oid { Boolean = 16, Int8 = 20, Int2 = 21, Int4 = 23, Float4 = 700, Float8 = 701, Numeric = 1700 };

template <typename Value>
Value Read(std::string_view text) {
  Value value{};
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

/// A statement in which the values at ?1, ?2... are replaced.
template <typename Filler>
std::string Filled(const std::string& text, const Filler& filler) {
  std::string filled;
  std::size_t from = 0;
  for (std::size_t at = 0; (at = text.find('?', at)) != std::string::npos; from = at) {
    int place = 0;
    const char* const digits = text.data() + at + 1;
    const char* const after = std::from_chars(digits, text.data() + text.size(), place).ptr;
    filled.append(text, from, at - from);
    at = static_cast<std::size_t>(after - text.data());
    filled += after == digits ? "?" : filler(place);
  }
  return filled.append(text, from);
}

}  // namespace

Cursor::Type PostgreSqlRows::TypeOf(int column) const {
  if (PQgetisnull(rows.get(), row, column) != 0) {
    return Type::Null;
  }
  switch (PQftype(rows.get(), column)) {
    case Boolean:
    case Int8:
    case Int2:
    case Int4:
      return Type::Integer;
    case Float4:
    case Float8:
    case Numeric:
      return Type::Number;
    default:
      return Type::Text;
  }
}

long long PostgreSqlRows::Integer(int column) const {
  const std::string_view text = Text(column);
  return text == "t" ? 1 : Read<long long>(text);
}

double PostgreSqlRows::Number(int column) const { return Read<double>(Text(column)); }

std::string_view PostgreSqlRows::Text(int column) const {
  return {PQgetvalue(rows.get(), row, column), static_cast<std::size_t>(PQgetlength(rows.get(), row, column))};
}

PostgreSqlStatement::PostgreSqlStatement(PostgreSqlConnection& connection, const std::string& text)
    : PostgreSqlRows(connection), text(Filled(text, [](int place) { return '$' + std::to_string(place); })) {}

void PostgreSqlStatement::Bind(int place, double value) {
  std::string number;
  AppendNumber(number, value);
  Place(place) = number;
}

bool PostgreSqlStatement::Next() {
  if (!rows) {
    rows = connection.Ask(text, values);
    row = -1;
  }
  return ++row < PQntuples(rows.get());
}

PostgreSqlConnection::Value& PostgreSqlStatement::Place(int place) {
  const auto index = static_cast<std::size_t>(place - 1);
  values.resize(std::max(values.size(), index + 1));
  return values[index];
}

void PostgreSqlStream::Bind(int place, double value) { AppendNumber(values[place] = "", value); }

bool PostgreSqlStream::Next() {
  if (!asked) {
    Ask();
  } else if (++row == PQntuples(rows.get()) && row == rowsAtOnce) {
    Fetch("");
  }
  return row < PQntuples(rows.get());
}

void PostgreSqlStream::Ask() {
  Forget();
  Fetch("DECLARE " + name + " NO SCROLL CURSOR FOR " + Filled(text, [this](int place) { return values.at(place); }) +
        "; ");
  declared = true;
  asked = true;
}

void PostgreSqlStream::Fetch(const std::string& before) {
  rows = connection.Ask(before + "FETCH " + std::to_string(rowsAtOnce) + " FROM " + name);
  row = 0;
}

void PostgreSqlStream::Forget() noexcept {
  if (declared) {
    connection.Close(name);
  }
  declared = false;
}

}  // namespace Velora::Store
