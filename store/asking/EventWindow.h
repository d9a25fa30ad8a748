#pragma once

#include "store/reading/Reader.h"
#include "store/reading/Rows.h"

#include <optional>
#include <string>
#include <vector>

namespace Velora::Store {

/// A time after all that can be stored.
inline constexpr const char* afterAllTimes = "9999-12-31T24";

/// Which events are asked for. An empty text stands for any. Names are as stored.
struct EventWindow {
  std::string from = "";               ///< A time, or the beginning of one: the events at it or later.
  std::string before = afterAllTimes;  ///< The events before it.
  std::string instrument = "";         ///< Of the session that saved the event.
  std::string activity = "";           ///< Of the event's execution or of one above it: an activity or a version of it.
  std::string name = "";               ///< Of the event.
  std::optional<long long> run = {};   ///< The root of the run to which the event belongs.
};

/// Queries for the events of a window. They read along the index of times, or of a run, and read no other events.
class WindowQuestion {
 public:
  WindowQuestion(const Reader& store, EventWindow window);

  /// The tables of a query, in which the events are v. Other tables can be joined to them.
  const std::string& Tables() const { return tables; }
  /// The condition for the events.
  const std::string& Condition() const { return condition; }
  /// The condition for the parameters p of the events.
  const std::string& OfParameters() const { return ofParameters; }
  /// A query for the parameters of the events, in no order.
  /// @param more a further condition, which begins with AND.
  Rows Parameters(const std::string& columns, const std::string& joins = "", const std::string& more = "") const;

  /// The values for ?1 to ?5 of a query with this condition, followed by one's own from ?6 on.
  std::vector<std::string> Values(const std::vector<std::string>& own = {}) const;
  static constexpr int firstOwn = 6;

 private:
  void LimitKeys();

  const Reader& store;
  const EventWindow window;
  std::string tables, condition, ofParameters;
};

}  // namespace Velora::Store
