#include "output/Times.h"

#include "output/Terminal.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace Velora::Ts {

namespace {

constexpr std::string_view earliest = "0000-01-01T00:00:00.000000";
constexpr std::size_t shortest = 10;  // a date
constexpr long long second = 1'000'000;

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

int PartOf(const std::string& time, std::size_t from, std::size_t length) {
  int number = 0;
  std::from_chars(time.data() + from, time.data() + from + length, number);
  return number;
}

template <typename... Values>
std::string Formatted(const char* format, Values... values) {
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), format, values...));
  return text.data();
}

}  // namespace

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
  using namespace std::chrono;
  const year_month_day date{year(PartOf(time, 0, 4)), month(static_cast<unsigned>(PartOf(time, 5, 2))),
                            day(static_cast<unsigned>(PartOf(time, 8, 2)))};
  if (!date.ok()) {
    return std::nullopt;
  }
  const auto seconds = sys_days(date).time_since_epoch() + hours(PartOf(time, 11, 2)) + minutes(PartOf(time, 14, 2)) +
                       std::chrono::seconds(PartOf(time, 17, 2));
  return seconds.count() * second + PartOf(time, 20, 6);
}

std::string LocalTime(std::string_view stored, bool fractions) {
  const std::optional<long long> time = Microseconds(stored);
  const std::time_t seconds = time ? (*time - ((*time % second) + second) % second) / second : 0;
  std::tm local{};
  std::array<char, 64> text{};
  if (!time || localtime_r(&seconds, &local) == nullptr ||
      std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local) == 0) {
    return Printable(stored);
  }
  const long minutes = local.tm_gmtoff / 60;
  return text.data() + (fractions ? Formatted(".%03lld", (*time - seconds * second) / 1000) : "") +
         Formatted("%c%02ld:%02ld", minutes < 0 ? '-' : '+', std::labs(minutes) / 60, std::labs(minutes) % 60);
}

std::optional<double> SecondsBetween(std::string_view from, std::string_view to) {
  const auto begin = Microseconds(from);
  const auto end = Microseconds(to);
  return begin && end ? std::optional(static_cast<double>(*end - *begin) / second) : std::nullopt;
}

std::string Duration(double seconds, bool fractions) {
  const long long all = std::llround(std::abs(seconds) * 1000);
  return Formatted("%s%lld:%02lld:%02lld", seconds < 0 ? "-" : "", all / 3'600'000, all / 60'000 % 60,
                   all / 1000 % 60) +
         (fractions ? Formatted(".%03lld", all % 1000) : "");
}

}  // namespace Velora::Ts
