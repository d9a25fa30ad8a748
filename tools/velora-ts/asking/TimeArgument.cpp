#include "asking/TimeArgument.h"

#include "asking/UsageError.h"
#include "output/Times.h"
#include "store/Error.h"

#include <optional>
#include <regex>

namespace Velora::Ts {

using namespace Store;
using namespace std::chrono;

namespace {

/// What a clock shows, as if it were UTC.
using Clock = Time;

/// The first moment at which local clocks show a time, or at which they skip it.
Time FirstMoment(Clock clock) {
  const seconds before = LocalOffset(clock - days(1));
  const seconds after = LocalOffset(clock + days(1));
  Time moment = clock - before;
  if (LocalOffset(moment) == before) {
    return moment;
  }
  Time earlier = clock - after;
  if (LocalOffset(earlier) == after) {
    return earlier;
  }
  while (moment - earlier > seconds(1)) {  // the change is between them
    const Time middle = earlier + (moment - earlier) / 2;
    (LocalOffset(middle) == after ? moment : earlier) = middle;
  }
  return floor<seconds>(moment);
}

/// The moment at which clocks with an offset such as "+01:00" show a time. No offset is the local one.
Time MomentOf(Clock clock, const std::string& offset) {
  if (offset.empty()) {
    return FirstMoment(clock);
  }
  if (offset == "Z") {
    return clock;
  }
  const minutes ahead = hours(std::stoi(offset.substr(1, 2))) + minutes(std::stoi(offset.substr(4)));
  return offset.front() == '-' ? clock + ahead : clock - ahead;
}

/// The moment of a date and a time of day. Nothing if there is none.
std::optional<Time> Dated(const std::string& text) {
  static const std::regex form(
      "([0-9]{4}-[0-9]{2}-[0-9]{2})(?:[T ]((?:[01][0-9]|2[0-3])(?::[0-5][0-9]){0,2}(?:\\.[0-9]{1,6})?))?"
      "(Z|[+-](?:[01][0-9]|2[0-3]):[0-5][0-9])?");
  std::smatch part;
  if (!std::regex_match(text, part, form)) {
    return std::nullopt;
  }
  const std::string clock = part[1].str() + (part[2].matched ? 'T' + part[2].str() : "");
  const std::optional<long long> shown = Microseconds(clock);
  return shown ? std::optional(MomentOf(Clock(microseconds(*shown)), part[3])) : std::nullopt;
}

std::string DateOf(Clock clock) { return ToStoredTime(clock).substr(0, 10); }

/// The moment that a text names. Nothing if there is none.
std::optional<Time> Moment(const std::string& text, Time now) {
  static const std::regex ago("-([0-9]{1,6})([dhms])"), timeOfDay("[0-9]{2}:.*"), month("[0-9]{4}-[0-9]{2}"),
      day("(today|yesterday)(.*)");
  const Clock clock = now + LocalOffset(now);
  const std::string today = DateOf(clock), yesterday = DateOf(clock - days(1));
  std::smatch part;
  if (std::regex_match(text, part, ago)) {
    const char unit = *part[2].first;
    const seconds one = unit == 'd' ? days(1) : unit == 'h' ? hours(1) : unit == 'm' ? minutes(1) : seconds(1);
    return now - std::stoi(part[1]) * one;
  }
  if (std::regex_match(text, part, day)) {
    return Dated((part[1] == "today" ? today : yesterday) + part[2].str());
  }
  if (std::regex_match(text, timeOfDay)) {
    const std::optional<Time> moment = Dated(today + ' ' + text);
    return moment > now ? Dated(yesterday + ' ' + text) : moment;
  }
  return Dated(std::regex_match(text, month) ? text + "-01" : text);
}

}  // namespace

std::string TimeArgument(const std::string& text, Time now) {
  static const std::regex zeros("(((T00)?:00)?:00)?\\.000000Z$|0*Z$");
  try {
    if (const std::optional<Time> moment = Moment(text, now)) {
      return std::regex_replace(ToStoredTime(*moment), zeros, "", std::regex_constants::format_first_only);
    }
  } catch (const Store::Error&) {  // a time before the year 0 or after 9999
  }
  throw UsageError("time '" + text + "': expected a time that exists, as " VELORA_TIME_FORMS);
}

}  // namespace Velora::Ts
