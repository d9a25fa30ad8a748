#include "StoredTime.h"

#include <TSAL/Error.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <string_view>

namespace Quor::TolvaServices::Local {

using namespace std::chrono;
using MicrosecondTime = sys_time<microseconds>;

static constexpr std::string_view form = "2026-11-24T21:55:03.123456Z";

std::string ToStoredTime(const Types::DateTimeOffset& time) {
  const Types::DateTimeOffset stated = time.IsStated() ? time : Types::DateTimeOffset::Now();
  static constexpr MicrosecondTime first = sys_days(year(0) / January / 1);
  static constexpr MicrosecondTime end = sys_days(year(10000) / January / 1);
  const MicrosecondTime point{microseconds(stated.Microseconds())};
  if (point < first || point >= end) {
    throw TsError("time of " + std::to_string(stated.Microseconds()) +
                  " microseconds since 1970 cannot be stored; expected one in the years 0 to 9999");
  }
  const auto day = floor<days>(point);
  const year_month_day date(day);
  const hh_mm_ss clock(point - day);
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ",
                                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                                  static_cast<int>(clock.subseconds().count())));
  return text.data();
}

Types::DateTimeOffset FromStoredTime(const std::string& stored) {
  const auto number = [&stored](std::size_t at, std::size_t length) {
    int value = 0;
    const char* const first = stored.data() + at;
    if (stored.size() != form.size() || std::from_chars(first, first + length, value).ptr != first + length) {
      throw TsError("stored time '" + stored + "' cannot be read; expected the form " + std::string(form));
    }
    return value;
  };
  const auto day = year(number(0, 4)) / number(5, 2) / number(8, 2);
  const MicrosecondTime point = sys_days(day) + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2)) +
                                microseconds(number(20, 6));
  return Types::DateTimeOffset::FromMicroseconds(point.time_since_epoch().count());
}

}  // namespace Quor::TolvaServices::Local
