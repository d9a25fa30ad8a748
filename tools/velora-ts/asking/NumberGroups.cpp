#include "asking/NumberGroups.h"

#include "output/Times.h"
#include "store/reading/ParameterValue.h"
#include "store/values/StoredTime.h"

#include <algorithm>
#include <cmath>

namespace Velora::Ts {

using namespace Store;

namespace {

enum Column { At = 5, First, Second };

constexpr std::size_t minutes = 16;  // the characters of a stored time down to its minutes
constexpr std::size_t day = 10, month = 7;

struct Way {
  const char* columns;  // two, which tell groups apart
  const char* joins;
};

constexpr const char* ofExecution = "LEFT JOIN executions x ON x.execution_id = v.execution_id ";

Way WayOf(GroupBy by) {
  static const std::string runs = std::string(ofExecution) + "LEFT JOIN executions r ON r.execution_id = x.root_id";
  static const std::string activities =
      std::string(ofExecution) + "LEFT JOIN activity_versions w ON w.version_id = x.version_id";
  switch (by) {
    case GroupBy::Run:
      return {"r.execution_id, r.started_at", runs.c_str()};
    case GroupBy::Instrument:
      return {"n.instrument, ''", "LEFT JOIN sessions n ON n.session_id = v.session_id"};
    case GroupBy::Activity:
      return {"w.name, w.version", activities.c_str()};
    default:
      return {"'', ''", ""};
  }
}

/// Finds the groups of numbers. Neighbours mostly belong to the same one, so their names are not made again.
class GroupFinder {
 public:
  GroupFinder(NumberGroups& all, GroupBy by) : all(all), by(by) {}

  NumberGroup& Of(const Rows& row) {
    const bool isOfTime = by == GroupBy::Day || by == GroupBy::Month;
    const std::string_view first = isOfTime ? row.Text(At).substr(0, minutes) : row.Text(First);
    const std::string_view second = row.Text(Second);
    if (group == nullptr || first != lastFirst || second != lastSecond) {
      lastFirst = first;
      lastSecond = second;
      group = &all.groups[isOfTime ? LocalDay(row.Text(At)) : Name()];
    }
    return *group;
  }

 private:
  std::string LocalDay(std::string_view at) const {
    return LocalTime(at, false).substr(0, by == GroupBy::Day ? day : month);
  }
  std::string Name() const {
    return by == GroupBy::Run ? lastSecond + ' ' + lastFirst : lastFirst + (lastSecond.empty() ? "" : ' ' + lastSecond);
  }

  NumberGroups& all;
  const GroupBy by;
  NumberGroup* group = nullptr;
  std::string lastFirst, lastSecond;
};

}  // namespace

NumberGroups::NumberGroups(const Store::Reader& store, const Store::EventWindow& window, const std::string& parameter,
                           GroupBy by, bool withTimes) {
  const WindowQuestion question(store, window);
  const Way way = WayOf(by);
  Rows rows =
      question.Parameters(std::string("p.position, p.name, p.kind, p.value_text, p.value_number, v.at, ") + way.columns,
                          way.joins, " AND p.name = ?" + std::to_string(WindowQuestion::firstOwn));
  GroupFinder finder(*this, by);
  for (rows.Ask(question.Values({parameter})); rows.Next();) {
    const std::optional<double> number = NumberOf(rows);
    if (!number || !std::isfinite(*number)) {
      ++others;
      continue;
    }
    ++count;
    NumberGroup& group = finder.Of(rows);
    const std::string_view at = rows.Text(At);
    if (group.firstAt.empty() || at < group.firstAt) {
      group.firstAt = at;
    }
    if (at > group.lastAt) {
      group.lastAt = at;
    }
    group.numbers.Add(*number);
    if (withTimes) {
      group.times.push_back(Microseconds(at).value_or(0));
    }
  }
}

}  // namespace Velora::Ts
