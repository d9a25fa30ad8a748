#include "store/values/StoredTime.h"

#include "store/Error.h"

#include <charconv>
#include <string_view>

namespace Velora::Store {

using namespace std::chrono;

namespace {

constexpr std::string_view form = "2026-11-24T21:55:03.123456Z";
constexpr std::string_view earliest = "0000-01-01T00:00:00.000000";
constexpr std::size_t shortest = 10;  // a date

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

int PartOf(const std::string& time, std::size_t from, std::size_t length) {
  int number = 0;
  std::from_chars(time.data() + from, time.data() + from + length, number);
  return number;
}

template <typename Number>
void PutDigits(std::string& text, std::size_t at, std::size_t count, Number number) {
  for (; count > 0; number /= 10) {
    text[at + --count] = static_cast<char>('0' + number % 10);
  }
}

}  // namespace

Time Now() { return floor<microseconds>(system_clock::now()); }

std::string ToStoredTime(Time time) {
  static constexpr Time first = sys_days(year(0) / January / 1);
  static constexpr Time end = sys_days(year(10000) / January / 1);
  if (time < first || time >= end) {
    throw Error("time of " + std::to_string(time.time_since_epoch().count()) +
                " microseconds since 1970 cannot be stored; expected a time in the years 0 to 9999");
  }
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  std::string text(form);
  PutDigits(text, 0, 4, static_cast<int>(date.year()));
  PutDigits(text, 5, 2, static_cast<unsigned>(date.month()));
  PutDigits(text, 8, 2, static_cast<unsigned>(date.day()));
  PutDigits(text, 11, 2, clock.hours().count());
  PutDigits(text, 14, 2, clock.minutes().count());
  PutDigits(text, 17, 2, clock.seconds().count());
  PutDigits(text, 20, 6, clock.subseconds().count());
  return text;
}

Time FromStoredTime(const std::string& stored) {
  const std::optional<long long> time = stored.size() == form.size() ? Microseconds(stored) : std::nullopt;
  if (!time) {
    throw Error("stored time '" + stored + "' cannot be read; expected the form " + std::string(form));
  }
  return Time(microseconds(*time));
}

std::optional<long long> Microseconds(std::string_view stored) {
  if (stored.ends_with('Z')) {
    stored.remove_suffix(1);
  }
  if (stored.size() < shortest || stored.size() > earliest.size()) {
    return std::nullopt;
  }
  std::string time(stored);
  time += earliest.substr(stored.size());
  for (std::size_t place = 0; place < time.size(); ++place) {
    if (IsDigit(earliest[place]) ? !IsDigit(time[place]) : time[place] != earliest[place]) {
      return std::nullopt;
    }
  }
  const year_month_day date{year(PartOf(time, 0, 4)), month(static_cast<unsigned>(PartOf(time, 5, 2))),
                            day(static_cast<unsigned>(PartOf(time, 8, 2)))};
  if (!date.ok()) {
    return std::nullopt;
  }
  const auto whole = sys_days(date).time_since_epoch() + hours(PartOf(time, 11, 2)) + minutes(PartOf(time, 14, 2)) +
                     seconds(PartOf(time, 17, 2));
  return microseconds(whole).count() + PartOf(time, 20, 6);
}

std::optional<double> SecondsBetween(std::string_view from, std::string_view to) {
  const auto begin = Microseconds(from);
  const auto end = Microseconds(to);
  return begin && end ? std::optional(static_cast<double>(*end - *begin) / 1e6) : std::nullopt;
}

}  // namespace Velora::Store
