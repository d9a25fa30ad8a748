#include <VeloraSystem/LocalClock.h>

#include <windows.h>

#include <algorithm>

namespace Velora::System {

using namespace std::chrono;

namespace {

constexpr sys_days first = year(1601) / 1 / 2;  // Windows knows no day before these
constexpr sys_days last = year(9999) / 12 / 30;

SYSTEMTIME PartsOf(sys_seconds time) {
  const sys_days date = floor<days>(time);
  const year_month_day day(date);
  const hh_mm_ss clock(time - date);
  SYSTEMTIME parts{};
  parts.wYear = static_cast<WORD>(static_cast<int>(day.year()));
  parts.wMonth = static_cast<WORD>(static_cast<unsigned>(day.month()));
  parts.wDay = static_cast<WORD>(static_cast<unsigned>(day.day()));
  parts.wHour = static_cast<WORD>(clock.hours().count());
  parts.wMinute = static_cast<WORD>(clock.minutes().count());
  parts.wSecond = static_cast<WORD>(clock.seconds().count());
  return parts;
}

sys_seconds TimeOf(const SYSTEMTIME& parts) {
  return sys_days(year(parts.wYear) / parts.wMonth / parts.wDay) + hours(parts.wHour) + minutes(parts.wMinute) +
         seconds(parts.wSecond);
}

}  // namespace

seconds LocalOffset(sys_seconds moment) {
  const sys_seconds known = std::clamp<sys_seconds>(moment, first, last);
  const SYSTEMTIME utc = PartsOf(known);
  TIME_ZONE_INFORMATION ofYear{};
  TIME_ZONE_INFORMATION* const rules =  // null for those of today
      GetTimeZoneInformationForYear(utc.wYear, nullptr, &ofYear) != 0 ? &ofYear : nullptr;
  SYSTEMTIME local{};
  return SystemTimeToTzSpecificLocalTime(rules, &utc, &local) != 0 ? TimeOf(local) - known : seconds(0);
}

}  // namespace Velora::System
