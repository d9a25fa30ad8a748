#include "reading/PostgreSqlSource.h"

#include "PostgreSqlSettings.h"
#include "PostgreSqlStart.h"

#include <TSAL/Error.h>

#include <charconv>
#include <map>
#include <regex>
#include <utility>

namespace Velora::Ts {

using Quor::TolvaServices::TsError;
namespace Local = Quor::TolvaServices::Local;

namespace {

constexpr int rowsAtOnce = 500;

// The server's numbers for the types that a store's columns and counts have.
enum : Oid { Boolean = 16, Int8 = 20, Int2 = 21, Int4 = 23, Float4 = 700, Float8 = 701, Numeric = 1700 };

std::string OnOneLine(std::string text) {
  text.erase(text.find_last_not_of(" \n") + 1);
  return std::regex_replace(text, std::regex(R"(\s*\n\s*)"), "; ");
}

/// Has its answer sent in portions, so that it may be of any length. Asked and answered with one message each way as
/// long as it has one portion.
class PostgreSqlCursor : public Cursor {
 public:
  PostgreSqlCursor(PostgreSqlSource& source, std::string name, std::string question)
      : source(source), name(std::move(name)), question(std::move(question)) {}

  ~PostgreSqlCursor() override { Forget(); }

  void Restart() override { asked = false; }
  void Bind(int place, long long value) override { Bind(place, std::to_string(value)); }
  void Bind(int place, const std::string& value) override { values[place] = source.Quoted(value); }

  bool Next() override {
    if (!asked) {
      Ask();
    } else if (++row == PQntuples(rows.get()) && row == rowsAtOnce) {
      Fetch("");
    }
    return row < PQntuples(rows.get());
  }

  int Columns() const override { return PQnfields(rows.get()); }
  const char* Name(int column) const override { return PQfname(rows.get(), column); }
  Type TypeOf(int column) const override {
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
  long long Integer(int column) const override {
    const std::string_view text = Text(column);
    return text == "t" ? 1 : Read<long long>(text);
  }
  double Number(int column) const override { return Read<double>(Text(column)); }
  std::string_view Text(int column) const override {
    return {PQgetvalue(rows.get(), row, column), static_cast<std::size_t>(PQgetlength(rows.get(), row, column))};
  }

 private:
  template <typename Value>
  static Value Read(std::string_view text) {
    Value value{};
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
  }

  void Ask() {
    static const std::regex place(R"(\?(\d))");
    std::string filled;
    std::size_t from = 0;
    for (std::sregex_iterator at(question.begin(), question.end(), place), end; at != end; ++at) {
      filled.append(question, from, static_cast<std::size_t>(at->position()) - from);
      filled += values.at(std::stoi((*at)[1]));
      from = static_cast<std::size_t>(at->position() + at->length());
    }
    filled.append(question, from);
    Forget();
    Fetch("DECLARE " + name + " NO SCROLL CURSOR FOR " + filled + "; ");
    declared = true;
    asked = true;
  }
  void Forget() noexcept {
    if (declared) {
      source.Close(name);
    }
    declared = false;
  }
  void Fetch(const std::string& before) {
    rows = source.Run(before + "FETCH " + std::to_string(rowsAtOnce) + " FROM " + name);
    row = 0;
  }

  PostgreSqlSource& source;
  const std::string name;
  const std::string question;
  std::map<int, std::string> values;
  bool declared = false;
  bool asked = false;
  int row = 0;
  PostgreSqlSource::Result rows{nullptr, &PQclear};
};

}  // namespace

PostgreSqlSource::PostgreSqlSource(const std::string& where, const std::string& snapshot)
    : name(Local::NameOf(where)), connection(PQconnectdb(Local::WithoutBlanks(where).c_str()), &PQfinish) {
  if (PQstatus(connection.get()) != CONNECTION_OK) {
    throw TsError("TS store '" + name + "' cannot be reached: " + OnOneLine(PQerrorMessage(connection.get())));
  }
  Run(Local::findStore);
  Run("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
  Run("SET LOCAL cursor_tuple_fraction = 1; SET LOCAL jit = off");  // every answer is read to its end
  Run("SET LOCAL extra_float_digits = 1");                          // and numbers to theirs
  if (!snapshot.empty()) {
    Run("SET TRANSACTION SNAPSHOT " + Quoted(snapshot));
  }
}

bool PostgreSqlSource::IsStore() {
  const Result found = Run("SELECT to_regclass('ts_schema') IS NOT NULL");
  return std::string_view(PQgetvalue(found.get(), 0, 0)) == "t";
}

std::unique_ptr<Cursor> PostgreSqlSource::Prepare(const std::string& question) {
  return std::make_unique<PostgreSqlCursor>(*this, "c" + std::to_string(++cursors), question);
}

void PostgreSqlSource::Close(const std::string& cursor) noexcept {
  try {
    closing += "CLOSE " + cursor + "; ";
  } catch (...) {
    // Then it stays open until the end.
  }
}

PostgreSqlSource::Result PostgreSqlSource::Run(const std::string& statements) {
  Result result(PQexec(connection.get(), (std::exchange(closing, "") + statements).c_str()), &PQclear);
  const ExecStatusType status = PQresultStatus(result.get());
  if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
    throw TsError("TS store '" + name + "': " + OnOneLine(PQerrorMessage(connection.get())));
  }
  return result;
}

std::string PostgreSqlSource::Quoted(const std::string& value) const {
  const std::unique_ptr<char, decltype(&PQfreemem)> quoted(
      PQescapeLiteral(connection.get(), value.data(), value.size()), &PQfreemem);
  if (!quoted) {
    throw TsError("TS store '" + name + "' cannot be asked for a text that is not UTF-8");
  }
  return quoted.get();
}

}  // namespace Velora::Ts
