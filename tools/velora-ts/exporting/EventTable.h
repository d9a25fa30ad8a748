#pragma once

#include "exporting/ParameterColumns.h"
#include "store/reading/EventRows.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::Ts {

/// A table with a row for each event, as comma-separated values: docs/velora-ts.md. All columns must be known before
/// the first row is written.
class EventTable {
 public:
  /// @param fixed the names of the columns that come before those of parameters.
  explicit EventTable(const std::vector<std::string>& fixed);

  /// Begins the next event of which parameters are learned.
  void BeginEvent() { columns.BeginEvent(); }
  /// Learns of a parameter.
  void Learn(std::string_view name, const ParameterColumns::Place& place) { columns.Learn(name, place); }
  /// Gives columns to what was learned since the last call.
  /// @throws Error when there are more columns than a table may have.
  void Arrange();

  void WriteHead() const;
  /// Writes the current event. Its columns are the first fixed ones; the first of them is its number.
  /// @param more readable texts for the fixed columns behind them.
  void Write(Store::EventRows& events, const std::vector<std::string>& more = {});

 private:
  void AppendValue(std::string& cell, const Store::Rows& parameter);

  const std::size_t fixed;  // the number of fixed columns
  std::string header;
  std::set<std::string> taken;
  ParameterColumns columns;
  std::vector<std::string> cells;  // these three are kept for their memory
  std::string line, readable;
};

}  // namespace Velora::Ts
