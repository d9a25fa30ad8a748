#pragma once

#include "support/TestStore.h"

#include <filesystem>
#include <string>

/// What a query of text columns answers, as a person would read it: cells joined by '|', rows ended by '\n'.
inline std::string Query(soci::session& sql, const std::string& statement) {
  std::string answer;
  const soci::rowset<soci::row> rows = (sql.prepare << statement);
  for (const soci::row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      answer += column == 0 ? "" : "|";
      if (row.get_indicator(column) == soci::i_null) {
        answer += "NULL";
      } else if (row.get_properties(column).get_data_type() == soci::dt_string) {
        answer += row.get<std::string>(column);
      } else if (row.get_properties(column).get_data_type() == soci::dt_integer) {
        answer += std::to_string(row.get<int>(column));
      } else if (row.get_properties(column).get_data_type() == soci::dt_long_long) {
        answer += std::to_string(row.get<long long>(column));
      } else {
        std::ostringstream number;
        number << row.get<double>(column);
        answer += number.str();
      }
    }
    answer += '\n';
  }
  return answer;
}

inline std::string Query(const std::filesystem::path& database, const std::string& statement) {
  soci::session sql;
  TestStore(database).Open(sql);
  return Query(sql, statement);
}
